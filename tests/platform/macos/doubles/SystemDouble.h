#pragma once

#include <Carbon/Carbon.h>

#include <deque>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tavelle::tests {

// What stands in for the system behind its C functions: each call is recorded as it would be written, and answered as
// the test wants. There is one, which reset() makes new. Not for more than one thread at a time.
struct SystemDouble {
  std::vector<std::string> calls;

  OSStatus statusOfInstalling = noErr;
  std::deque<OSStatus> statusesOfRegistering;  // of the next ones; then noErr
  OSStatus statusOfReading = noErr;
  EventHandlerUPP handler = nullptr;
  void* handlersUserData = nullptr;

  bool givesSources = true;
  bool givesEvents = true;

  std::deque<bool> trust;  // what the next questions are answered; then true

  std::map<std::pair<std::string, std::string>, std::string> passwords;  // by service and account
  std::deque<OSStatus> statusesOfAdding;                                 // of the next ones; then what is there decides

  // Calls the handler as for a press of the hotkey with that number.
  OSStatus press(UInt32 hotKey);
};

SystemDouble& system();
void resetSystem();

// How many objects were created or copied and not released.
int liveObjects();

// `object` in words: the name of a constant, or what it holds.
std::string describe(CFTypeRef object);

// The entry of a dictionary under a constant key, and the bytes of data or text; empty where there are none.
CFTypeRef valueOf(CFDictionaryRef dictionary, CFTypeRef key);
std::string bytesOf(CFTypeRef object);

// Creates what a call gives out: an object that is released once.
CFTypeRef makeData(std::string bytes);
CFTypeRef makeNamed(std::string name);

}  // namespace tavelle::tests

// tavelle-hotkeys [COMBINATION...]: whether each combination can be a hotkey now, as in "Super+Shift+R". Without
// arguments it tries the usual ones and lists those that cannot. A combination of a running Tavelle counts as held too.
//
// Ends with 0 where all are free, 1 where some are held, 2 where it could not find out.

#include "platform/linux/VirtualKeyCodes.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/HotKeyGrabs.h"
#include "platform/linux/x11/Keyboard.h"
#include "tools/hotkeys/KeyCombination.h"

#include <cstdio>
#include <span>

namespace {

constexpr int allFree = 0;
constexpr int someHeld = 1;
constexpr int notKnown = 2;

// Grabs each for a moment: the server tells in no other way.
bool isFree(tavelle::x11::HotKeyGrabs& grabs, const tavelle::KeyCombination& combination) {
  const auto key = tavelle::keycodeOf(combination.keyCode);
  return key && grabs.grab(*key, combination.modifiers) != nullptr;
}

int check(tavelle::x11::HotKeyGrabs& grabs, std::span<char*> names) {
  int result = allFree;
  for (const char* const name : names) {
    const auto combination = tavelle::KeyCombination::parse(name);
    if (!combination) {
      std::printf("%s: not a combination that is known here\n", name);
      result = notKnown;
      continue;
    }
    const bool canGrab = isFree(grabs, *combination);
    std::printf("%s: %s\n", combination->description().c_str(), canGrab ? "free" : "held by a program");
    if (!canGrab && result == allFree) result = someHeld;
  }
  return result;
}

int checkUsual(tavelle::x11::HotKeyGrabs& grabs) {
  const auto combinations = tavelle::usualCombinations();
  std::size_t held = 0;
  for (const auto& combination : combinations) {
    if (isFree(grabs, combination)) continue;
    std::printf("%s: held by a program\n", combination.description().c_str());
    ++held;
  }
  std::printf("%zu of %zu usual combinations are free\n", combinations.size() - held, combinations.size());
  return held == 0 ? allFree : someHeld;
}

}  // namespace

int main(int argc, char** argv) {
  const auto connection = tavelle::x11::Connection::open();
  if (!connection) {
    std::fputs("tavelle-hotkeys: no X server answers on $DISPLAY\n", stderr);
    return notKnown;
  }
  tavelle::x11::Keyboard keyboard{*connection};
  tavelle::x11::HotKeyGrabs grabs{*connection, keyboard};
  const std::span names{argv + 1, static_cast<std::size_t>(argc > 1 ? argc - 1 : 0)};
  return names.empty() ? checkUsual(grabs) : check(grabs, names);
}

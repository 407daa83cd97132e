#pragma once

#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/KeySet.h"

#include <cstdint>
#include <vector>

namespace tavelle::x11 {

// The keyboards behind the one that applications know. Each has its own idea of which keys are down, which synthetic
// keys do not touch: only they can tell what a person still holds once a key was let go on the person's behalf.
class InputDevices {
 public:
  explicit InputDevices(Connection& connection);

  // Asks the server which keyboards there are. Needed again after each change of the device hierarchy.
  void refresh();

  // The keys that are down on any of the keyboards. One round trip.
  KeySet keysDown() const;

  // The keyboard on which synthetic keys are pressed: its keymap is the one that gives them their meaning. The core
  // keyboard where the server tells no such device.
  std::uint16_t syntheticKeyboard() const { return syntheticKeyboard_; }
  std::uint16_t coreKeyboard() const { return coreKeyboard_; }

 private:
  Connection& connection_;
  std::vector<std::uint8_t> keyboards_;
  std::uint16_t coreKeyboard_ = 3;  // where every server has it
  std::uint16_t syntheticKeyboard_ = 3;
};

}  // namespace tavelle::x11

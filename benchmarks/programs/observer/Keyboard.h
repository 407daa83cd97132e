#pragma once

#include "benchmarks/programs/shared/Display.h"

#include <cstdint>
#include <deque>
#include <optional>

namespace tavelle::bench {

// The keyboard that a person types on: the virtual server's own device, and not the one from which synthetic keys come.
// A tool that only looks at its own device's keys, or lets go of another's, shows here.
class Keyboard {
 public:
  explicit Keyboard(const Display& display);

  // Control and Alt go down, then the key; the time just before that last one. The key goes up after `hold`
  // microseconds, the modifiers `lag` later, from releaseDue().
  std::int64_t press(std::uint8_t key, std::int64_t hold, std::int64_t lag);

  // Lets go of what is due; true when that was the last.
  bool releaseDue();
  // Milliseconds until the next release; none where nothing is held.
  std::optional<int> untilNextRelease() const;

  // Every key that is down on any keyboard.
  int keysDown() const;
  void releaseEverything();

  std::uint16_t device() const { return device_; }

 private:
  struct Release {
    std::int64_t at;
    std::uint8_t key;
  };

  void send(std::uint8_t key, bool isDown);

  const Display& display_;
  std::uint16_t device_ = 0;
  std::uint8_t firstEvent_ = 0;
  std::deque<Release> releases_;
};

}  // namespace tavelle::bench

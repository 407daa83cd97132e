#pragma once

#include "tests/platform/linux/TemporaryFolder.h"
#include "tests/platform/linux_net/PrivateBus.h"
#include "tests/support/ChildProcess.h"

#include <optional>
#include <string>
#include <vector>

namespace tavelle::tests {

// A bus with gnome-keyring on it, which is one Secret Service that people have. Its keyrings outlive its restarts.
class Keyring {
 public:
  // Nothing is started yet: the bus has no Secret Service.
  Keyring() = default;

  const PrivateBus& bus() const { return bus_; }

  // With the login keyring there and unlocked; made if need be.
  void startUnlocked();

  // As it finds things: without a keyring, or with one that is locked.
  void start();

  void stop();

  // It takes calls no more, and does not know it. stop() works still.
  void hang();

  // Runs secret-tool, another program's view of the same items. What it prints; `input` is typed into it.
  std::string secretTool(const std::vector<std::string>& arguments, const std::string& input = "") const;

 private:
  void startWith(const std::vector<std::string>& options, const std::string& input);

  PrivateBus bus_;
  TemporaryFolder home_;
  std::optional<ChildProcess> daemon_;
};

}  // namespace tavelle::tests

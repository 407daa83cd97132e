#pragma once

#include "tests/platform/linux/TemporaryFolder.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Environment.h"

#include <string>

namespace tavelle::tests {

// A session bus of the test's own, and this process's for the life of this object. Nothing on it is started by itself.
class PrivateBus {
 public:
  PrivateBus();

  // Whether the name gets an owner within ten seconds.
  bool waitForOwner(const std::string& name) const;

  // Until the bus has noticed that the owner has gone, for which it has ten seconds.
  void waitForNoOwner(const std::string& name) const;

 private:
  TemporaryFolder folder_;
  std::string configuration_;
  ChildProcess daemon_;
  Environment environment_;  // the address that the daemon prints
};

}  // namespace tavelle::tests

#pragma once

#include "platform/linux/GDBus.h"
#include "tests/platform/linux/Program.h"
#include "tests/platform/linux/TemporaryFolder.h"

#include <gio/gio.h>

#include <memory>
#include <string>

namespace tavelle::tests {

// A session bus of the test's own. It starts the services whose files are in its service folder.
class PrivateBus {
 public:
  PrivateBus();
  ~PrivateBus();

  const std::string& address() const { return address_; }

  // A connection of its own, as another program has one.
  GObjectPtr<GDBusConnection> connect() const;

  // Adds a service that the bus starts when it is first called.
  void addService(const std::string& name, const std::string& command);

  // Ends the bus, as when the desktop's session falls apart.
  void end();

 private:
  TemporaryFolder folder_;
  std::string address_;
  std::unique_ptr<Program> daemon_;
};

// Serves the main loop until the reply is there. Null on an error.
GVariantPtr callAndWait(GDBusConnection* connection, const dbus::Method& method, GVariant* arguments = nullptr);

// As GVariant's text format has it; for comparing. "nothing" for null.
std::string textOf(GVariant* value);
inline std::string textOf(const GVariantPtr& value) {
  return textOf(value.get());
}

}  // namespace tavelle::tests

#include "tests/platform/linux_net/PrivateBus.h"

#include "platform/FatalError.h"

#include <chrono>

namespace tavelle::tests {
namespace {

std::string configurationIn(const std::filesystem::path& folder) {
  const auto file = folder / "bus.conf";
  write(file, R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
  "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path=)" +
                  (folder / "bus").string() +
                  R"(</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*"/>
    <allow receive_sender="*"/>
    <allow own="*"/>
  </policy>
</busconfig>
)");
  return file;
}

}  // namespace

PrivateBus::PrivateBus()
    : configuration_(configurationIn(folder_)),
      daemon_({"dbus-daemon", "--config-file=" + configuration_, "--nofork", "--nopidfile", "--print-address"}),
      environment_({{"DBUS_SESSION_BUS_ADDRESS", daemon_.readLine()}}) {}

bool PrivateBus::waitForOwner(const std::string& name) const {
  return ChildProcess{{"gdbus", "wait", "--session", "--timeout", "10", name}}.wait() == 0;
}

void PrivateBus::waitForNoOwner(const std::string& name) const {
  const std::vector<std::string> ask{"gdbus",
                                     "call",
                                     "--session",
                                     "--dest",
                                     "org.freedesktop.DBus",
                                     "--object-path",
                                     "/",
                                     "--method",
                                     "org.freedesktop.DBus.NameHasOwner",
                                     name};
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  std::string answer;
  do {
    answer = ChildProcess{ask}.readLine();
  } while (answer == "(true,)" && std::chrono::steady_clock::now() < deadline);
  if (answer != "(false,)") fatalError("the bus does not tell that nobody has the name " + name);
}

}  // namespace tavelle::tests

#include "tests/platform/linux_net/Keyring.h"

#include "platform/FatalError.h"

#include <csignal>

namespace tavelle::tests {
namespace {

constexpr const char* password = "the keyring's password";

}  // namespace

void Keyring::startUnlocked() {
  std::filesystem::create_directories(home_.path() / "keyrings");
  write(home_.path() / "keyrings" / "default", "login");
  startWith({"--unlock"}, password);
}

void Keyring::start() {
  startWith({}, "");
}

void Keyring::startWith(const std::vector<std::string>& options, const std::string& input) {
  const auto home = home_.path().string();
  std::vector<std::string> command{"env",
                                   "HOME=" + home,
                                   "XDG_DATA_HOME=" + home,
                                   "XDG_RUNTIME_DIR=" + home,
                                   "gnome-keyring-daemon",
                                   "--foreground",
                                   "--components=secrets",
                                   "--control-directory=" + home + "/control"};
  command.insert(command.end(), options.begin(), options.end());
  daemon_.emplace(command);
  daemon_->write(input);
  daemon_->closeInput();
  // It has its name before it has the objects that are called by it, and closes its output when it has all.
  daemon_->readAll();
  if (!bus_.waitForOwner("org.freedesktop.secrets")) fatalError("gnome-keyring-daemon did not start");
}

void Keyring::stop() {
  daemon_.reset();
}

void Keyring::hang() {
  daemon_->signal(SIGSTOP);
}

std::string Keyring::secretTool(const std::vector<std::string>& arguments, const std::string& input) const {
  std::vector<std::string> command{"secret-tool"};
  command.insert(command.end(), arguments.begin(), arguments.end());
  ChildProcess tool{command};
  tool.write(input);
  tool.closeInput();
  const auto output = tool.readAll();
  tool.wait();
  return output;
}

}  // namespace tavelle::tests

#include "platform/linux/LinuxPlatform.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

namespace tavelle::tests {
namespace {

// An environment variable with another value, or none, for a while.
class Variable {
 public:
  Variable(const char* name, const char* value) : name_(name) {
    if (const char* const before = std::getenv(name)) before_ = before;
    set(value);
  }
  ~Variable() { set(before_ ? before_->c_str() : nullptr); }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;

 private:
  void set(const char* value) const {
    if (value) {
      setenv(name_, value, 1);
    } else {
      unsetenv(name_);
    }
  }

  const char* name_;
  std::optional<std::string> before_;
};

// What a start with `arguments` says on standard error. It must not get as far as a platform.
std::string refusalOf(std::vector<std::string> arguments = {"tavelle"}) {
  std::vector<char*> pointers;
  for (auto& argument : arguments) pointers.push_back(argument.data());
  testing::internal::CaptureStderr();
  const auto start = LinuxPlatform::start(pointers);
  const auto told = testing::internal::GetCapturedStderr();
  const auto* const exitStatus = std::get_if<int>(&start);
  EXPECT_TRUE(exitStatus && *exitStatus == 1);
  return told;
}

TEST(LinuxPlatform, saysThatItNeedsADisplay) {
  const Variable display{"DISPLAY", nullptr};
  const Variable wayland{"WAYLAND_DISPLAY", nullptr};
  EXPECT_EQ(refusalOf(), "Tavelle needs an X11 desktop session: no display found (DISPLAY is not set).\n");
}

TEST(LinuxPlatform, saysWhichDisplayDoesNotAnswer) {
  const Variable display{"DISPLAY", ":54321"};
  const Variable wayland{"WAYLAND_DISPLAY", nullptr};
  EXPECT_EQ(refusalOf(), "Tavelle needs an X11 desktop session: no display found (nothing answers on :54321).\n");
}

TEST(LinuxPlatform, saysThatItDoesNotWorkOnWaylandAlone) {
  const Variable display{"DISPLAY", nullptr};
  const Variable wayland{"WAYLAND_DISPLAY", "wayland-0"};
  EXPECT_NE(refusalOf().find("Wayland"), std::string::npos);
}

TEST(LinuxPlatform, answersItsCommandLineWithoutADisplay) {
  const Variable display{"DISPLAY", nullptr};
  std::string arguments[] = {"tavelle", "--version"};
  char* pointers[] = {arguments[0].data(), arguments[1].data()};
  testing::internal::CaptureStdout();
  const auto start = LinuxPlatform::start(pointers);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "Tavelle " TAVELLE_TEST_VERSION "\n");
  EXPECT_EQ(std::get<int>(start), 0);
}

}  // namespace
}  // namespace tavelle::tests

#include "platform/linux/LinuxPlatform.h"

#include "tests/support/Environment.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace tavelle::tests {
namespace {

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
  const Environment environment{{{"DISPLAY", std::nullopt}, {"WAYLAND_DISPLAY", std::nullopt}}};
  EXPECT_EQ(refusalOf(), "Tavelle needs an X11 desktop session: no display found (DISPLAY is not set).\n");
}

TEST(LinuxPlatform, saysWhichDisplayDoesNotAnswer) {
  const Environment environment{{{"DISPLAY", ":54321"}, {"WAYLAND_DISPLAY", std::nullopt}}};
  EXPECT_EQ(refusalOf(), "Tavelle needs an X11 desktop session: no display found (nothing answers on :54321).\n");
}

TEST(LinuxPlatform, saysThatItDoesNotWorkOnWaylandAlone) {
  const Environment environment{{{"DISPLAY", std::nullopt}, {"WAYLAND_DISPLAY", "wayland-0"}}};
  EXPECT_NE(refusalOf().find("Wayland"), std::string::npos);
}

TEST(LinuxPlatform, answersItsCommandLineWithoutADisplay) {
  const Environment environment{{{"DISPLAY", std::nullopt}}};
  std::string arguments[] = {"tavelle", "--version"};
  char* pointers[] = {arguments[0].data(), arguments[1].data()};
  testing::internal::CaptureStdout();
  const auto start = LinuxPlatform::start(pointers);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "Tavelle " TAVELLE_TEST_VERSION "\n");
  EXPECT_EQ(std::get<int>(start), 0);
}

}  // namespace
}  // namespace tavelle::tests

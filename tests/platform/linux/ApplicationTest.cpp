#include "platform/linux/Application.h"

#include "tests/platform/linux/MainLoop.h"
#include "tests/platform/linux/Program.h"
#include "tests/platform/linux/SessionBus.h"
#include "tests/platform/linux/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <iterator>

namespace tavelle::tests {
namespace {

constexpr const char* launched = "will finish launching\ndid finish launching\n";
constexpr const char* isRunningAlready = "Tavelle is already running.\n";

constexpr dbus::Method open = {applicationID, "/app/tavelle/Tavelle", "org.freedesktop.Application", "Open"};

std::string contentsOf(const std::filesystem::path& path) {
  std::ifstream file{path};
  return {std::istreambuf_iterator<char>{file}, {}};
}

// What others see in the list of processes.
std::string commandLineOf(int processID) {
  return contentsOf("/proc/" + std::to_string(processID) + "/cmdline");
}

class ApplicationTest : public testing::Test {
 protected:
  using Environment = std::map<std::string, std::string>;

  static std::unique_ptr<Program> start(const Environment& environment,
                                        const std::vector<std::string>& arguments = {}) {
    std::vector<std::string> command = {TAVELLE_TEST_APPLICATION};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return std::make_unique<Program>(command, environment);
  }
  Environment onBus(const PrivateBus& bus) const {
    return {{"DBUS_SESSION_BUS_ADDRESS", bus.address()}, {"XDG_RUNTIME_DIR", runtime_.path()}, {"DISPLAY", ":7"}};
  }
  Environment withoutBus() const {
    return {{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent"},
            {"XDG_RUNTIME_DIR", runtime_.path()},
            {"DISPLAY", ":7"}};
  }

  TemporaryFolder runtime_;
};

TEST_F(ApplicationTest, launchesOnceAndEndsWhenTerminated) {
  PrivateBus bus;
  const auto first = start(onBus(bus));
  ASSERT_TRUE(first->hasWritten(launched));
  first->signal(SIGUSR2);
  EXPECT_EQ(first->exitStatus(), 0);
  EXPECT_EQ(first->output(),
            std::string{launched} + "will terminate\nwithdraw\nhanding over\nterminate returned\nended\n");
}

TEST_F(ApplicationTest, tellsTheFirstInstanceOfASecondStart) {
  PrivateBus bus;
  const auto first = start(onBus(bus));
  ASSERT_TRUE(first->hasWritten(launched));
  for (int starts = 0; starts < 2; ++starts) {
    const auto second = start(onBus(bus));
    EXPECT_EQ(second->exitStatus(), 0);
    EXPECT_EQ(second->output(), std::string{isRunningAlready} + "ended\n");
  }
  EXPECT_TRUE(first->hasWritten("should handle reopen\nshould handle reopen\n")) << first->output();
}

TEST_F(ApplicationTest, neverRunsTwiceWithoutABus) {
  const auto first = start(withoutBus());
  ASSERT_TRUE(first->hasWritten(launched));
  const auto second = start(withoutBus());
  EXPECT_EQ(second->exitStatus(), 0);
  EXPECT_EQ(second->output(), std::string{isRunningAlready} + "ended\n");
}

TEST_F(ApplicationTest, neverRunsTwiceOnTwoBuses) {
  PrivateBus oneBus;
  PrivateBus otherBus;
  const auto first = start(onBus(oneBus));
  ASSERT_TRUE(first->hasWritten(launched));
  const auto second = start(onBus(otherBus));
  EXPECT_EQ(second->exitStatus(), 0);
  EXPECT_EQ(second->output(), std::string{isRunningAlready} + "ended\n");
}

TEST_F(ApplicationTest, runsOnEachDesktopThatThePersonHas) {
  PrivateBus oneBus;
  PrivateBus otherBus;
  const auto first = start(onBus(oneBus));
  auto nested = onBus(otherBus);
  nested["DISPLAY"] = ":8";
  const auto second = start(nested);
  EXPECT_TRUE(first->hasWritten(launched));
  EXPECT_TRUE(second->hasWritten(launched));
}

TEST_F(ApplicationTest, startsWhereThereIsNoPlaceForALock) {
  auto environment = withoutBus();
  environment["XDG_RUNTIME_DIR"] = "/nonexistent";
  EXPECT_TRUE(start(environment)->hasWritten(launched));
}

TEST_F(ApplicationTest, startsAfterOneThatWasKilled) {
  const auto first = start(withoutBus());
  ASSERT_TRUE(first->hasWritten(launched));
  first->signal(SIGKILL);
  EXPECT_EQ(first->exitStatus(), 1000 + SIGKILL);
  EXPECT_TRUE(start(withoutBus())->hasWritten(launched));
}

TEST_F(ApplicationTest, startsWhileOneThatEndsStillHandsOver) {
  PrivateBus bus;
  auto lingering = onBus(bus);
  lingering["TAVELLE_TEST_LINGERS"] = "1";
  const auto first = start(lingering);
  ASSERT_TRUE(first->hasWritten(launched));
  first->signal(SIGTERM);
  ASSERT_TRUE(first->hasWritten("will terminate\nwithdraw\nhanding over\n"));
  const auto peer = bus.connect();
  bool isGone = false;
  const auto watch = dbus::watchName(
      peer.get(), applicationID, [] {}, [&] { isGone = true; });
  ASSERT_TRUE(waitUntil([&] { return isGone; }));
  const auto second = start(onBus(bus));
  EXPECT_TRUE(second->hasWritten(launched)) << second->output();
  EXPECT_TRUE(first->isRunning());
  first->signal(SIGUSR1);
  EXPECT_EQ(first->exitStatus(), 0);
}

TEST_F(ApplicationTest, endsOrderlyOnEachSignal) {
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
    const auto program = start(withoutBus());
    ASSERT_TRUE(program->hasWritten(launched));
    program->signal(number);
    EXPECT_EQ(program->exitStatus(), 0);
    EXPECT_TRUE(program->output().ends_with("will terminate\nwithdraw\nhanding over\nended\n")) << program->output();
  }
}

TEST_F(ApplicationTest, endsAtOnceOnTheSecondSignal) {
  auto lingering = withoutBus();
  lingering["TAVELLE_TEST_LINGERS"] = "1";
  const auto program = start(lingering);
  ASSERT_TRUE(program->hasWritten(launched));
  program->signal(SIGTERM);
  ASSERT_TRUE(program->hasWritten("handing over\n"));
  program->signal(SIGTERM);
  EXPECT_EQ(program->exitStatus(), 1000 + SIGTERM);
}

TEST_F(ApplicationTest, livesOnWhenTheBusGoesAway) {
  PrivateBus bus;
  const auto program = start(onBus(bus));
  ASSERT_TRUE(program->hasWritten(launched));
  bus.end();
  program->signal(SIGUSR1);
  EXPECT_TRUE(program->hasWritten("alive\n"));
  EXPECT_TRUE(program->isRunning());
  const auto second = start(withoutBus());
  EXPECT_EQ(second->exitStatus(), 0);
  EXPECT_EQ(second->output(), std::string{isRunningAlready} + "ended\n");
  program->signal(SIGTERM);
  EXPECT_EQ(program->exitStatus(), 0);
}

TEST_F(ApplicationTest, takesTheActivationThatTheBusStartedItForAsTheLaunch) {
  PrivateBus bus;
  const auto program = start(onBus(bus), {"--gapplication-service"});
  ASSERT_TRUE(program->hasWritten(launched));
  const auto peer = bus.connect();
  const dbus::Method activate = {applicationID, "/app/tavelle/Tavelle", "org.freedesktop.Application", "Activate"};
  EXPECT_EQ(textOf(callAndWait(peer.get(), activate, g_variant_new_parsed("(@a{sv} {},)"))), "()");
  EXPECT_EQ(textOf(callAndWait(peer.get(), activate, g_variant_new_parsed("(@a{sv} {},)"))), "()");
  program->signal(SIGTERM);
  EXPECT_EQ(program->exitStatus(), 0);
  EXPECT_EQ(program->output(),
            std::string{launched} + "should handle reopen\nwill terminate\nwithdraw\nhanding over\nended\n");
}

TEST_F(ApplicationTest, deliversTheLinkThatStartedItByteForByteOnceLaunched) {
  PrivateBus bus;
  for (const auto& environment : {onBus(bus), withoutBus()}) {
    const auto program = start(environment, {"tavelle://auth?token=a%20b+c%2F&x#y"});
    EXPECT_TRUE(program->hasWritten(std::string{launched} + "get URL tavelle://auth?token=a%20b+c%2F&x#y\n"));
  }
}

TEST_F(ApplicationTest, takesTheLinkThatStartedItAsTheLaunch) {
  PrivateBus bus;
  const auto first = start(onBus(bus), {"tavelle://auth?token=a"});
  ASSERT_TRUE(first->hasWritten("get URL"));
  EXPECT_EQ(start(onBus(bus))->exitStatus(), 0);
  EXPECT_TRUE(first->hasWritten("should handle reopen\n"));
}

TEST_F(ApplicationTest, passesTheLinksOfASecondStartOnToTheFirst) {
  PrivateBus bus;
  const auto first = start(onBus(bus));
  ASSERT_TRUE(first->hasWritten(launched));
  EXPECT_EQ(start(onBus(bus), {"tavelle://auth?token=a", "tavelle://auth?token=b"})->exitStatus(), 0);
  EXPECT_TRUE(first->hasWritten("get URL tavelle://auth?token=a\nget URL tavelle://auth?token=b\n"));
  EXPECT_EQ(first->output().find("reopen"), std::string::npos);
}

TEST_F(ApplicationTest, hasTheBusStartOneForItsLinkWhereThatCanAndEnds) {
  PrivateBus bus;
  const auto output = runtime_.path() / "output";
  bus.addService(applicationID, "/usr/bin/env DISPLAY=:7 XDG_RUNTIME_DIR=" + runtime_.path().string() +
                                    " sh -c \"exec " + TAVELLE_TEST_APPLICATION + " --gapplication-service >" +
                                    output.string() + "\"");
  const auto program = start(onBus(bus), {"tavelle://auth?token=a%20b"});
  EXPECT_EQ(program->exitStatus(), 0);
  EXPECT_EQ(program->output(), "ended\n");
  EXPECT_EQ(contentsOf(output), std::string{launched} + "get URL tavelle://auth?token=a%20b\n");
  const auto peer = bus.connect();
  const auto owner = callAndWait(
      peer.get(),
      {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetConnectionUnixProcessID"},
      g_variant_new("(s)", applicationID));
  guint32 processID = 0;
  g_variant_get(owner.get(), "(u)", &processID);
  EXPECT_EQ(commandLineOf(static_cast<int>(processID)).find("auth"), std::string::npos);
  kill(static_cast<int>(processID), SIGKILL);
}

TEST_F(ApplicationTest, takesItsLinkItselfWhereTheBusCannotStartOne) {
  PrivateBus bus;
  bus.addService(applicationID, "/bin/false");
  const auto program = start(onBus(bus), {"tavelle://auth?token=a"});
  EXPECT_TRUE(program->hasWritten(std::string{launched} + "get URL tavelle://auth?token=a\n"));
}

TEST_F(ApplicationTest, deliversTheLinkThatTheBusStartedItFor) {
  PrivateBus bus;
  const auto program = start(onBus(bus), {"--gapplication-service"});
  ASSERT_TRUE(program->hasWritten(launched));
  const auto peer = bus.connect();
  const auto openLinks = [&](const std::string& links) {
    return textOf(callAndWait(peer.get(), open, g_variant_new_parsed(("(" + links + ", @a{sv} {})").c_str())));
  };
  EXPECT_EQ(openLinks("['tavelle://auth?token=a%20b']"), "()");
  EXPECT_EQ(openLinks("['TAVELLE:x', 'file:///etc/passwd', 'no link', '']"), "()");
  EXPECT_TRUE(
      program->hasWritten("get URL tavelle://auth?token=a%20b\nget URL TAVELLE:x\nget URL file:///etc/passwd\n"));
  EXPECT_TRUE(program->isRunning());
}

TEST_F(ApplicationTest, deliversTenThousandLinksInARowAndOneOf16KB) {
  PrivateBus bus;
  const auto program = start(onBus(bus));
  ASSERT_TRUE(program->hasWritten(launched));
  const auto peer = bus.connect();
  const std::string longLink = "tavelle://auth?token=" + std::string(16384, 'x');
  std::vector<const char*> links(10000, "tavelle://auth?token=a");
  links.push_back(longLink.c_str());
  GVariant* const list = g_variant_new_strv(links.data(), static_cast<gssize>(links.size()));
  callAndWait(peer.get(), open, g_variant_new("(@as@a{sv})", list, g_variant_new_parsed("@a{sv} {}")));
  ASSERT_TRUE(program->hasWritten("get URL " + longLink + "\n"));
  std::size_t count = 0;
  for (std::size_t at = 0; (at = program->output().find("token=a\n", at)) != std::string::npos; ++at) ++count;
  EXPECT_EQ(count, 10000);
}

TEST_F(ApplicationTest, keepsNoLinkInTheListOfProcesses) {
  const auto program = start(withoutBus(), {"tavelle://auth?token=secret"});
  ASSERT_TRUE(program->hasWritten("get URL tavelle://auth?token=secret\n"));
  const std::string shown = commandLineOf(program->processID());
  EXPECT_TRUE(shown.starts_with(TAVELLE_TEST_APPLICATION)) << shown;
  EXPECT_EQ(shown.find("auth"), std::string::npos);
}

TEST_F(ApplicationTest, recordsNoLinkHoweverMuchGLibIsAskedToTell) {
  PrivateBus bus;
  auto talkative = onBus(bus);
  talkative["G_DBUS_DEBUG"] = "all";
  talkative["G_MESSAGES_DEBUG"] = "all";
  const auto first = start(talkative);
  ASSERT_TRUE(first->hasWritten(launched));
  const auto second = start(talkative, {"tavelle://auth?token=secret"});
  EXPECT_EQ(second->exitStatus(), 0);
  EXPECT_EQ(second->output().find("secret"), std::string::npos) << second->output();
  ASSERT_TRUE(first->hasWritten("get URL tavelle://auth?token=secret\n"));
  EXPECT_EQ(first->output().find("secret"), first->output().rfind("secret")) << first->output();
}

TEST_F(ApplicationTest, tellsThatALinkCannotBePassedOnWithoutABusAndDoesNotTellTheLink) {
  const auto first = start(withoutBus());
  ASSERT_TRUE(first->hasWritten(launched));
  const auto second = start(withoutBus(), {"tavelle://auth?token=secret"});
  EXPECT_EQ(second->exitStatus(), 1);
  EXPECT_NE(second->output().find("the link could not be passed"), std::string::npos) << second->output();
  EXPECT_EQ(second->output().find("secret"), std::string::npos) << second->output();
}

TEST_F(ApplicationTest, survivesALinkThatIsNotUTF8) {
  PrivateBus bus;
  const auto first = start(onBus(bus));
  ASSERT_TRUE(first->hasWritten(launched));
  const auto second = start(onBus(bus), {"tavelle://auth?token=secret\xFF"});
  second->exitStatus();
  EXPECT_EQ(second->output().find("secret"), std::string::npos) << second->output();
  EXPECT_EQ(start(onBus(bus), {"tavelle://auth?token=b"})->exitStatus(), 0);
  EXPECT_TRUE(first->hasWritten("get URL tavelle://auth?token=b\n")) << first->output();
}

TEST_F(ApplicationTest, answersForItsCommandLineWithoutADesktop) {
  const auto help = start(withoutBus(), {"--help"});
  EXPECT_EQ(help->exitStatus(), 0);
  EXPECT_TRUE(help->output().starts_with("Usage: tavelle [LINK...]\n")) << help->output();
  const auto version = start(withoutBus(), {"--version"});
  EXPECT_EQ(version->exitStatus(), 0);
  EXPECT_EQ(version->output(), "Tavelle " TAVELLE_TEST_VERSION "\n");
}

TEST_F(ApplicationTest, refusesAnOptionThatItDoesNotKnow) {
  const auto program = start(withoutBus(), {"--nonsense"});
  EXPECT_EQ(program->exitStatus(), 1);
  EXPECT_NE(program->output().find("--nonsense"), std::string::npos) << program->output();
  EXPECT_EQ(program->output().find("launching"), std::string::npos) << program->output();
}

}  // namespace
}  // namespace tavelle::tests

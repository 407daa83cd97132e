#include "platform/linux/TransferProcess.h"

#include "tests/platform/linux/TemporaryFolder.h"
#include "tests/platform/linux_net/URLSessionFixture.h"

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <thread>

namespace tavelle::tests {
namespace {

using Code = URLError::Code;
using std::chrono::milliseconds;

class TransferProcessTest : public URLSessionFixture {
 protected:
  // The programs that talk to servers and that this process has started.
  static std::set<pid_t> programs() {
    std::set<pid_t> found;
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
      std::istringstream children{contentsOf(thread.path() / "children")};
      for (pid_t pid = 0; children >> pid;) {
        if (contentsOf("/proc/" + std::to_string(pid) + "/comm") == "tavelle-transfe\n") found.insert(pid);
      }
    }
    return found;
  }

  static pid_t program() {
    const auto all = programs();
    EXPECT_EQ(all.size(), 1u);
    return all.empty() ? -1 : *all.begin();
  }

  // Until that one has ended, by itself or not.
  static bool waitForEnd(pid_t pid) {
    const FileDescriptor process{static_cast<int>(syscall(SYS_pidfd_open, pid, 0))};
    if (!process) return errno == ESRCH;
    pollfd polled{process.get(), POLLIN, 0};
    return poll(&polled, 1, 30'000) == 1;
  }

  static std::shared_ptr<TransferProcess> processWith(
      const TransferProcess::Patience& patience,
      const std::filesystem::path& program = TransferProcess::standardProgram()) {
    return std::make_shared<TransferProcess>(program, patience);
  }

  static std::filesystem::path script(const TemporaryFolder& folder, const std::string& command) {
    auto program = folder.path() / "script";
    write(program, "#!/bin/sh\n" + command + "\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    return program;
  }

  URLError failureWith(const std::filesystem::path& program) {
    LinuxURLSession session{URLSessionConfiguration{long_}, std::make_shared<TransferProcess>(program)};
    return Load{session, chat("http://127.0.0.1:1/v1"), executor_}.error();
  }
};

TEST_F(TransferProcessTest, startsOneProgramForAllSessionsWithTheFirstRequest) {
  const StandIn server;
  LinuxURLSession another{URLSessionConfiguration{long_}, process_};
  EXPECT_EQ(programs().size(), 0u);
  load(chat(server.baseURL()));
  const auto started = program();
  Load{another, chat(server.baseURL()), executor_}.result();
  EXPECT_EQ(program(), started);
}

TEST_F(TransferProcessTest, hasTheProgramRunningForTheRequestThatIsToCome) {
  const StandIn server;
  process_->prepare();
  process_->prepare();
  while (programs().empty()) std::this_thread::yield();
  const auto prepared = program();
  load(chat(server.baseURL()));
  EXPECT_EQ(program(), prepared);
}

TEST_F(TransferProcessTest, tellsThatTheProgramIsMissingOnlyToTheRequest) {
  const auto process = std::make_shared<TransferProcess>("/nonexistent/tavelle-transfers");
  process->prepare();
  LinuxURLSession session{URLSessionConfiguration{long_}, process};
  EXPECT_EQ((Load{session, chat("http://127.0.0.1:1/v1"), executor_}.error().errorDescription()),
            "The part of Tavelle that talks to servers could not be started: No such file or directory");
}

TEST_F(TransferProcessTest, startsNoneForARequestThatCannotBeSent) {
  failure(post("ftp://127.0.0.1/", ""));
  EXPECT_EQ(programs().size(), 0u);
}

TEST_F(TransferProcessTest, showsNothingOfTheRequestInTheListOfProcesses) {
  const StandIn server;
  auto request = chat(server.baseURL());
  request.headers.emplace_back("Authorization", "Bearer secret");
  load(request);
  EXPECT_EQ(contentsOf("/proc/" + std::to_string(program()) + "/cmdline"), std::string("tavelle-transfers\0", 18));
}

TEST_F(TransferProcessTest, endsTheProgramWithItself) {
  const StandIn server;
  pid_t started = -1;
  {
    LinuxURLSession session{URLSessionConfiguration{long_}, std::make_shared<TransferProcess>()};
    Load{session, chat(server.baseURL()), executor_}.result();
    started = program();
  }
  EXPECT_TRUE(waitForEnd(started));
  EXPECT_EQ(programs().size(), 0u);
}

TEST_F(TransferProcessTest, endsTheProgramAfterARestAndStartsAnother) {
  const StandIn server;
  LinuxURLSession session{URLSessionConfiguration{long_},
                          processWith({.rest = milliseconds(1), .taking = milliseconds(1000)})};
  Load slow{session, chat(server.baseURLBehaving("delay=4")), executor_};
  Load silent{session, chat(server.baseURLBehaving("silence")), executor_};
  ASSERT_EQ(server.waitForRequests(2).size(), 2u);
  const auto first = program();
  EXPECT_EQ(slow.result().response.statusCode, 200) << "a server that keeps silent is no rest, and no frozen program";
  EXPECT_EQ(program(), first) << "it is still waited for";
  { const auto dropped = std::move(silent); }
  EXPECT_TRUE(waitForEnd(first));
  for (int request = 0; request < 20; ++request) {  // at the very moment when it may be ending
    EXPECT_EQ((Load{session, chat(server.baseURL()), executor_}.result().response.statusCode), 200);
  }
}

TEST_F(TransferProcessTest, takesAProgramThatDiesForALostConnection) {
  const StandIn server;
  auto silent = start(chat(server.baseURLBehaving("silence")));
  ASSERT_EQ(server.waitForRequests(1).size(), 1u);
  const auto first = program();
  kill(first, SIGKILL);
  const auto error = silent.error();
  EXPECT_EQ(error.code(), Code::networkConnectionLost);
  EXPECT_EQ(error.errorDescription(), "The network connection was lost.");
  EXPECT_EQ(load(chat(server.baseURL())).response.statusCode, 200);
  EXPECT_NE(program(), first);
}

TEST_F(TransferProcessTest, startsAnotherForOneThatDiedAtRest) {
  const StandIn server;
  load(chat(server.baseURL()));
  const auto first = program();
  kill(first, SIGKILL);
  ASSERT_TRUE(waitForEnd(first));
  // Its end may not have been heard of yet, and the next request may be lost with it; the one after that is not.
  auto next = start(chat(server.baseURL()));
  ASSERT_TRUE(executor_.runUntil([&next] { return next.isDone(); }));
  EXPECT_EQ(load(chat(server.baseURL())).response.statusCode, 200);
  EXPECT_NE(program(), first);
}

TEST_F(TransferProcessTest, doesNotWaitForAProgramThatIsFrozen) {
  const StandIn server;
  LinuxURLSession session{URLSessionConfiguration{long_}, processWith({.taking = milliseconds(1000)})};
  Load{session, chat(server.baseURL()), executor_}.result();
  const auto first = program();
  kill(first, SIGSTOP);
  Load large{session, chat(server.baseURL(), std::string(20'000'000, 'x')), executor_};
  EXPECT_EQ(large.error().code(), Code::networkConnectionLost);
  EXPECT_EQ((Load{session, chat(server.baseURL()), executor_}.result().response.statusCode), 200);
  EXPECT_NE(program(), first);
}

TEST_F(TransferProcessTest, doesNotWaitForAProgramThatIsFrozenWithARequestUnderWay) {
  const StandIn server;
  LinuxURLSession session{URLSessionConfiguration{long_}, processWith({.taking = milliseconds(1000)})};
  Load silent{session, chat(server.baseURLBehaving("silence")), executor_};
  ASSERT_EQ(server.waitForRequests(1).size(), 1u);
  const auto first = program();
  kill(first, SIGSTOP);
  EXPECT_EQ(silent.error().code(), Code::networkConnectionLost);
  EXPECT_TRUE(waitForEnd(first));
}

TEST_F(TransferProcessTest, doesNotWaitForAProgramThatIsFrozenInTheMiddleOfAResult) {
  const TemporaryFolder folder;
  const auto program = script(folder, "printf half >&3; exec tail -f /dev/null");
  LinuxURLSession session{URLSessionConfiguration{long_}, processWith({.taking = milliseconds(50)}, program)};
  EXPECT_EQ((Load{session, chat("http://127.0.0.1:1/v1"), executor_}.error().code()), Code::networkConnectionLost);
}

TEST_F(TransferProcessTest, takesResultsWhileItGivesOrders) {
  const StandIn server;
  auto answered = start(chat(server.baseURLBehaving("size=20000000")));
  // The program takes no order while it gives that result, and each of these is larger than what the socket holds.
  const std::string large(2'000'000, 'x');
  while (executor_.waiting() == 0) {
    const auto dropped = start(chat(server.baseURL(), large));
  }
  EXPECT_EQ(answered.result().response.statusCode, 200);
}

TEST_F(TransferProcessTest, saysThatTheProgramIsMissing) {
  const auto error = failureWith("/nonexistent/tavelle-transfers");
  EXPECT_EQ(error.code(), Code::unknown);
  EXPECT_EQ(error.errorDescription(),
            "The part of Tavelle that talks to servers could not be started: No such file or directory");
}

TEST_F(TransferProcessTest, takesAProgramThatEndsAtOnceForALostConnection) {
  EXPECT_EQ(failureWith("/bin/true").code(), Code::networkConnectionLost);
}

TEST_F(TransferProcessTest, takesAProgramThatTalksNonsenseForALostConnection) {
  const TemporaryFolder folder;
  EXPECT_EQ(failureWith(script(folder, "exec yes nonsense >&3")).code(), Code::networkConnectionLost);
}

TEST_F(TransferProcessTest, hearsNothingOfATransferThatWasCancelled) {
  const StandIn server;
  { const auto dropped = start(chat(server.baseURLBehaving("delay=0.1"))); }
  EXPECT_EQ(load(chat(server.baseURLBehaving("delay=0.2"))).response.statusCode, 200);
  EXPECT_EQ(executor_.waiting(), 0u);
}

}  // namespace
}  // namespace tavelle::tests

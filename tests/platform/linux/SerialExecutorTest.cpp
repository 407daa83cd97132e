#include "platform/linux/SerialExecutor.h"

#include "platform/linux/MainActor.h"
#include "tests/platform/contracts/SerialExecutorContract.h"
#include "tests/platform/linux/MainLoop.h"

#include <gtest/gtest.h>

#include <pthread.h>

#include <memory>
#include <string>
#include <system_error>
#include <thread>

namespace tavelle::tests {
namespace {

Task<std::thread::id> ownThread() {
  co_return std::this_thread::get_id();
}

struct Outcome {
  std::thread::id ranOn;
  std::thread::id resumedOn;
  std::string error;
  bool isThere = false;
};

Task<void> runOwnThread(SerialExecutor& executor, MainActor& home, Outcome& outcome) {
  try {
    outcome.ranOn = co_await executor.run(ownThread(), home);
  } catch (const std::exception& error) {
    outcome.error = error.what();
  }
  outcome.resumedOn = std::this_thread::get_id();
  outcome.isThere = true;
}

struct ExecutorOnAThread {
  SerialExecutor& executor() { return *own; }
  void endExecutor() { own.reset(); }
  MainActor& home() { return loop; }
  static bool waitUntil(const std::function<bool()>& isTrue) { return tests::waitUntil(isTrue); }

  GLibMainActor loop;
  std::unique_ptr<SerialExecutor> own = std::make_unique<LinuxSerialExecutor>();
};

INSTANTIATE_TYPED_TEST_SUITE_P(OnAThread, SerialExecutorContract, ExecutorOnAThread);

// While it lives, the system has no thread to give: each wants a stack of more than there are addresses.
class NoThreads {
 public:
  NoThreads() {
    pthread_getattr_default_np(&before_);
    pthread_attr_t enormous;
    pthread_attr_init(&enormous);
    pthread_attr_setstacksize(&enormous, std::size_t{1} << 48);
    pthread_setattr_default_np(&enormous);
    pthread_attr_destroy(&enormous);
  }
  ~NoThreads() {
    pthread_setattr_default_np(&before_);
    pthread_attr_destroy(&before_);
  }
  NoThreads(const NoThreads&) = delete;
  NoThreads& operator=(const NoThreads&) = delete;

 private:
  pthread_attr_t before_{};
};

TEST(LinuxSerialExecutor, takesNoJobWhereThereIsNoThreadAndGoesOnOnceThereIs) {
  bool hasRefusedRun = false;
  bool hasRun = false;
  {
    LinuxSerialExecutor executor;
    {
      const NoThreads none;
      EXPECT_THROW(executor.post([&] { hasRefusedRun = true; }), std::system_error);
    }
    executor.post([&] { hasRun = true; });
  }
  EXPECT_TRUE(hasRun);
  EXPECT_FALSE(hasRefusedRun);
}

TEST(LinuxSerialExecutor, bringsHomeThatThereIsNoThread) {
  GLibMainActor home;
  LinuxSerialExecutor executor;
  const NoThreads none;
  Outcome outcome;
  home.start(runOwnThread(executor, home, outcome));
  ASSERT_TRUE(waitUntil([&] { return outcome.isThere; }));
  EXPECT_EQ(outcome.error, "Resource temporarily unavailable");
  EXPECT_EQ(outcome.resumedOn, std::this_thread::get_id());
}

TEST(LinuxSerialExecutor, runsWorkOffTheMainThreadAndComesHome) {
  GLibMainActor home;
  LinuxSerialExecutor executor;
  Outcome outcome;
  home.start(runOwnThread(executor, home, outcome));
  ASSERT_TRUE(waitUntil([&] { return outcome.isThere; }));
  EXPECT_NE(outcome.ranOn, std::this_thread::get_id());
  EXPECT_EQ(outcome.resumedOn, std::this_thread::get_id());
}

}  // namespace
}  // namespace tavelle::tests

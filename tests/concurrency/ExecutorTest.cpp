#include "concurrency/SerialExecutor.h"
#include "platform/fake/MainActor.h"
#include "tests/support/Await.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace tavelle::tests {
namespace {

using testing::ElementsAre;

// Tells which executor a job ran on.
class NotingExecutor : public FakeSerialExecutor {
 public:
  NotingExecutor(FakeMainActor& loop, std::vector<std::string>& notes) : FakeSerialExecutor(loop), notes_(notes) {}
  void post(std::function<void()> job) override {
    FakeSerialExecutor::post([this, job = std::move(job)] {
      notes_.push_back("on the executor");
      job();
    });
  }

 private:
  std::vector<std::string>& notes_;
};

Task<std::string> work(std::vector<std::string>* notes, bool fails) {
  notes->push_back("working");
  if (fails) throw std::runtime_error{"no luck"};
  co_return "done";
}

class SerialExecutorTest : public testing::Test {
 protected:
  EventLog log;
  FakeMainActor loop{log};
  std::vector<std::string> notes;
  NotingExecutor executor{loop, notes};
};

TEST_F(SerialExecutorTest, runsTheWorkThereAndReturnsItsResultHome) {
  EXPECT_EQ(await(loop, executor.run(work(&notes, false), loop)), "done");
  EXPECT_THAT(notes, ElementsAre("on the executor", "working"));
}

TEST_F(SerialExecutorTest, bringsTheExceptionHome) {
  EXPECT_THROW(await(loop, executor.run(work(&notes, true), loop)), std::runtime_error);
  EXPECT_THAT(notes, ElementsAre("on the executor", "working"));
}

}  // namespace
}  // namespace tavelle::tests

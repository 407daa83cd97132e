#include "concurrency/MainActor.h"

#include "platform/fake/MainActor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

namespace tavelle::tests {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

Task<void> noteAround(MainActor& actor, std::chrono::milliseconds wait, std::vector<std::string>* notes) {
  notes->push_back("begun");
  co_await actor.sleep(wait);
  notes->push_back("woken");
}

class MainActorTest : public testing::Test {
 protected:
  void TearDown() override { loop.runToEnd(); }

  EventLog log;
  FakeMainActor loop{log};
  std::vector<std::string> notes;
};

TEST_F(MainActorTest, startsATaskOnALaterTurn) {
  loop.start(noteAround(loop, 150ms, &notes));
  EXPECT_THAT(notes, ElementsAre());
  loop.runUntilIdle();
  EXPECT_THAT(notes, ElementsAre("begun"));
}

TEST_F(MainActorTest, sleepsAsLongAsItIsToldAndNotLess) {
  loop.start(noteAround(loop, 150ms, &notes));
  loop.advance(149ms);
  EXPECT_THAT(notes, ElementsAre("begun"));
  loop.advance(1ms);
  EXPECT_THAT(notes, ElementsAre("begun", "woken"));
}

TEST_F(MainActorTest, runsJobsInTheOrderInWhichTheyCame) {
  for (int i = 0; i < 3; ++i) loop.post([this, i] { notes.push_back(std::to_string(i)); });
  loop.runUntilIdle();
  EXPECT_THAT(notes, ElementsAre("0", "1", "2"));
}

}  // namespace
}  // namespace tavelle::tests

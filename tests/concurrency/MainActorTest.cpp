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

TEST_F(MainActorTest, sleepsAsLongAsItIsToldAndNotLess) {
  loop.start(noteAround(loop, 150ms, &notes));
  loop.advance(149ms);
  EXPECT_THAT(notes, ElementsAre("begun"));
  loop.advance(1ms);
  EXPECT_THAT(notes, ElementsAre("begun", "woken"));
}

}  // namespace
}  // namespace tavelle::tests

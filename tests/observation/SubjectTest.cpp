#include "observation/Subject.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace tavelle::tests {
namespace {

using testing::ElementsAre;

class SubjectTest : public testing::Test {
 protected:
  auto noting(std::vector<int>& notes) {
    return [&notes](int value) { notes.push_back(value); };
  }

  Subject<int> subject;
  std::vector<int> first;
  std::vector<int> second;
};

TEST_F(SubjectTest, sendsToEverySubscriberUntilItsTokenIsDropped) {
  const auto kept = subject.subscribe(noting(first));
  {
    const auto dropped = subject.subscribe(noting(second));
    subject.send(1);
  }
  subject.send(2);
  EXPECT_THAT(first, ElementsAre(1, 2));
  EXPECT_THAT(second, ElementsAre(1));
}

TEST_F(SubjectTest, letsASubscriberCancelItselfAndAnotherWhileSending) {
  std::optional<Subscription> own;
  std::optional<Subscription> other;
  own = subject.subscribe([&](int value) {
    first.push_back(value);
    own.reset();
    other.reset();
  });
  other = subject.subscribe(noting(second));
  subject.send(1);
  subject.send(2);
  EXPECT_THAT(first, ElementsAre(1));
  EXPECT_THAT(second, ElementsAre());
}

TEST_F(SubjectTest, givesANewSubscriberTheNextValueFirst) {
  std::optional<Subscription> late;
  const auto early = subject.subscribe([&](int) {
    if (!late) late = subject.subscribe(noting(second));
  });
  subject.send(1);
  EXPECT_THAT(second, ElementsAre());
  subject.send(2);
  EXPECT_THAT(second, ElementsAre(2));
}

TEST_F(SubjectTest, survivesItsOwnEndWhileSending) {
  auto mortal = std::make_optional<Subject<int>>();
  const auto token = mortal->subscribe([&](int value) {
    mortal.reset();
    first.push_back(value);
  });
  mortal->send(1);
  EXPECT_THAT(first, ElementsAre(1));
}

}  // namespace
}  // namespace tavelle::tests

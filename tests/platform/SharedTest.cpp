#include "platform/Shared.h"

#include "platform/fake/FakePlatform.h"

#include <gtest/gtest.h>

namespace tavelle::tests {
namespace {

struct Counted {
  static std::unique_ptr<Counted> makeShared() { return std::make_unique<Counted>(Counted{++made}); }
  static inline int made = 0;
  int number;
};

TEST(Shared, isMadeOnceForEachPlatformInUse) {
  FakePlatform platform;
  {
    const Platform::Use use{platform};
    EXPECT_EQ(&sharedInstance<Counted>(), &sharedInstance<Counted>());
    EXPECT_EQ(sharedInstance<Counted>().number, 1);
  }
  const Platform::Use use{platform};
  EXPECT_EQ(sharedInstance<Counted>().number, 2);
}

TEST(SharedDeathTest, needsAPlatform) {
  EXPECT_DEATH(Platform::current(), "no platform is in use");
}

}  // namespace
}  // namespace tavelle::tests

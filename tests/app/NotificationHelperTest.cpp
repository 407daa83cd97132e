#include "app/NotificationHelper.h"

#include "platform/UUID.h"
#include "platform/fake/FakePlatform.h"

#include <gtest/gtest.h>

namespace tavelle::tests {
namespace {

class NotificationHelperTest : public testing::Test {
 protected:
  FakePlatform platform;
  NotificationHelper helper{platform.notifications};
};

TEST_F(NotificationHelperTest, sendsTitleAndBodyWithTheDefaultSound) {
  helper.send("Tavelle", "Done!");
  ASSERT_EQ(platform.notifications.requests.size(), 1);
  const auto& request = platform.notifications.requests[0];
  EXPECT_EQ(request.content.title, "Tavelle");
  EXPECT_EQ(request.content.body, "Done!");
  EXPECT_EQ(request.content.sound, NotificationSound::systemDefault);
  EXPECT_TRUE(UUID::parse(request.identifier)) << request.identifier;
}

TEST_F(NotificationHelperTest, makesTwoNotificationsOfTwoEqualCalls) {
  helper.send("Tavelle", "Done!");
  helper.send("Tavelle", "Done!");
  ASSERT_EQ(platform.notifications.requests.size(), 2);
  EXPECT_NE(platform.notifications.requests[0].identifier, platform.notifications.requests[1].identifier);
}

TEST_F(NotificationHelperTest, returnsAsUsualWherePermissionIsDenied) {
  platform.notifications.granted = false;
  helper.send("Tavelle", "Done!");
  EXPECT_EQ(platform.notifications.requests.size(), 1);
}

}  // namespace
}  // namespace tavelle::tests

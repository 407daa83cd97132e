#include "platform/linux/curl/WebAddress.h"

#include <gtest/gtest.h>

namespace tavelle {
namespace {

TEST(WebAddressTest, comparesSchemeHostAndPortWithoutRegardToCase) {
  EXPECT_TRUE(isSameOrigin("https://Model.example/v1", "HTTPS://model.example/v2?key=1"));
  EXPECT_TRUE(isSameOrigin("https://model.example", "https://model.example:443/"));
  EXPECT_FALSE(isSameOrigin("https://model.example", "http://model.example"));
  EXPECT_FALSE(isSameOrigin("https://model.example", "https://model.example:8443"));
  EXPECT_FALSE(isSameOrigin("https://model.example", "https://model.example.org"));
  EXPECT_FALSE(isSameOrigin("nonsense://", "nonsense://"));
}

TEST(WebAddressTest, knowsThisMachineByItsNamesAndNumbers) {
  for (const auto* here : {"http://localhost:11434/v1", "http://LOCALHOST", "http://models.localhost/",
                           "http://127.0.0.1", "http://127.8.9.10:80", "http://[::1]:11434"}) {
    EXPECT_TRUE(isOnThisMachine(here)) << here;
  }
  for (const auto* elsewhere : {"http://localhost.example", "http://mylocalhost", "http://127.example",
                                "http://10.0.0.1", "http://[::2]", "http://localhost@model.example/", "not a URL"}) {
    EXPECT_FALSE(isOnThisMachine(elsewhere)) << elsewhere;
  }
}

}  // namespace
}  // namespace tavelle

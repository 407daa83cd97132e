#pragma once

#include "account/TavelleAccountManager.h"
#include "platform/fake/FakePlatform.h"
#include "tests/support/Await.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>

namespace tavelle::tests {

// The account session on the fake backend.
class AccountFixture : public testing::Test {
 protected:
  TavelleAccountManager makeAccount() {
    return {KeychainHelper{platform.secrets}, platform.sharedSession, platform.loop};
  }

  // The person opens a link.
  void open(const std::string& url) { account.handleAuthCallback(URL::parse(url).value()); }

  std::optional<std::string> storedToken() const {
    const auto found = platform.secrets.items.find(item);
    return found == platform.secrets.items.end() ? std::nullopt : std::optional{found->second};
  }

  const std::pair<std::string, std::string> item{"app.tavelle.Tavelle", "tavelle_auth_token"};
  FakePlatform platform;
  TavelleAccountManager account = makeAccount();
};

}  // namespace tavelle::tests

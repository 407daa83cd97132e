// Links that the desktop opens: anybody can make one.

#include "account/TavelleAccountManager.h"
#include "app/AppDelegate.h"
#include "platform/fake/FakePlatform.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/support/PercentEncoded.h"

#include <memory>

namespace tavelle::fuzz {
namespace {

// The application, with nobody signed in.
struct Application {
  Application() { app->applicationWillFinishLaunching(); }

  static TavelleAccountManager& account() { return TavelleAccountManager::shared(); }

  const std::optional<std::string>& tokenAfter(const std::string& link) {
    account().signOut();
    platform.appleEvents.getURL(link);
    return account().cachedToken();
  }

  FakePlatform platform;
  Platform::Use use{platform};
  std::shared_ptr<AppDelegate> app = std::make_shared<AppDelegate>(platform);
};

// It is never put away: at the end of the process its shared instances are gone before it.
Application& application() {
  static auto& one = *new Application;
  return one;
}

void checkSession(const std::optional<std::string>& token) {
  const auto& account = Application::account();
  const auto& secrets = application().platform.secrets.items;
  require(account.isSignedIn() == token.has_value(), "signed in is who has a token");
  require(secrets.size() == (token ? 1 : 0), "the keychain has the token and nothing else");
  require(!token || secrets.begin()->second == *token, "the keychain has another token");
  require(isUTF8(account.email().value_or("")), "an address that cannot be shown");
}

// The first value of that name in a link of ours.
std::optional<std::string> tokenIn(const std::string& link) {
  const auto url = URL::parse(link);
  if (!url || !link.starts_with("tavelle:") || url->host() != "auth") return std::nullopt;
  for (const auto& [name, value] : url->queryItems()) {
    if (name == "token") return value;
  }
  return std::nullopt;
}

void open(const std::string& link) {
  const auto& token = application().tokenAfter(link);
  checkSession(token);
  require(token == tokenIn(link), "who signs in is who has a link of ours with a token");
  require(!token || (isUTF8(*token) && token->size() < link.size()), "a token that no link can carry");
}

void openWith(const std::string& token) {
  const auto& taken = application().tokenAfter("tavelle://auth?token=" + tests::percentEncoded(token) + "&token=other");
  checkSession(taken);
  require(taken == token, "the token is not the link's");
}

void run(Input input) {
  if (input.choice(2) == 0) return open(std::string{input.rest()});
  openWith(textOf(input.rest()));
}

}  // namespace
}  // namespace tavelle::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tavelle::fuzz::run({data, size});
  return 0;
}

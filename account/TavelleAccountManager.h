#pragma once

#include "concurrency/MainActor.h"
#include "concurrency/Task.h"
#include "llm/KeychainHelper.h"
#include "observation/Subject.h"
#include "platform/URL.h"
#include "platform/URLSession.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tavelle {

// The person's session with the hosted service. They sign in by a link that the service sends by e-mail, and that
// brings back a token; the token is in the keychain and nowhere else. Main actor only.
class TavelleAccountManager {
 public:
  static TavelleAccountManager& shared();
  static std::unique_ptr<TavelleAccountManager> makeShared();

  // Signed in where the keychain holds a token.
  TavelleAccountManager(KeychainHelper keychain, URLSession& session, MainActor& mainActor);

  // Whether a token is held, expired or not: only the service can tell.
  bool isSignedIn() const { return isSignedIn_; }
  // Whose token it is, where the token says so; for display.
  const std::optional<std::string>& email() const { return email_; }
  // A login request is in flight.
  bool isLoading() const { return isLoading_; }
  // For the account section to show. Nothing sets it yet.
  const std::optional<std::string>& errorMessage() const { return errorMessage_; }

  // Sent before each change of the four.
  Subject<>& objectWillChange() { return objectWillChange_; }

  // The bearer token of hosted requests. It may be empty.
  const std::optional<std::string>& cachedToken() const { return cachedToken_; }

  // Has the service send a sign-in link to `email`, which is sent as it was entered. Throws TavelleAccountError,
  // URLError or JSONError.
  Task<void> requestLogin(std::string email);

  // Signs in with the first query item "token" of `url`, whatever else the URL is; without one nothing happens. Where
  // the keychain refuses, the session lasts for this run.
  void handleAuthCallback(const URL& url);

  void signOut();

 private:
  static std::optional<std::string> decodeEmail(std::string_view token);
  Task<void> sendLoginRequest(std::string email);
  void setSession(std::optional<std::string> token);
  template <typename T>
  void set(T& field, T value);

  KeychainHelper keychain_;
  URLSession& session_;
  MainActor& mainActor_;

  bool isSignedIn_ = false;
  std::optional<std::string> email_;
  bool isLoading_ = false;
  std::optional<std::string> errorMessage_;
  std::optional<std::string> cachedToken_;
  Subject<> objectWillChange_;
};

}  // namespace tavelle

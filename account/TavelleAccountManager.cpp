#include "account/TavelleAccountManager.h"

#include "account/Base64.h"
#include "account/TavelleAccountError.h"
#include "llm/JSONRequest.h"
#include "llm/LLMProvider.h"
#include "platform/Platform.h"
#include "platform/Shared.h"

#include <algorithm>
#include <exception>
#include <utility>
#include <vector>

namespace tavelle {
namespace {

constexpr auto tokenKey = "tavelle_auth_token";

std::vector<std::string> piecesOf(std::string_view token) {
  std::vector<std::string> pieces;
  while (!token.empty()) {
    const auto end = std::min(token.find('.'), token.size());
    if (end > 0) pieces.emplace_back(token.substr(0, end));
    token.remove_prefix(std::min(end + 1, token.size()));
  }
  return pieces;
}

// To standard base64: padded, and in its alphabet.
std::string fromBase64URL(std::string text) {
  text.append((4 - text.size() % 4) % 4, '=');
  std::replace(text.begin(), text.end(), '-', '+');
  std::replace(text.begin(), text.end(), '_', '/');
  return text;
}

}  // namespace

TavelleAccountManager& TavelleAccountManager::shared() {
  return sharedInstance<TavelleAccountManager>();
}

std::unique_ptr<TavelleAccountManager> TavelleAccountManager::makeShared() {
  Platform& platform = Platform::current();
  return std::make_unique<TavelleAccountManager>(KeychainHelper{platform.keychain()}, platform.sharedURLSession(),
                                                 platform.mainActor());
}

TavelleAccountManager::TavelleAccountManager(KeychainHelper keychain, URLSession& session, MainActor& mainActor)
    : keychain_(keychain), session_(session), mainActor_(mainActor) {
  setSession(keychain_.load(tokenKey));
}

Task<void> TavelleAccountManager::requestLogin(std::string email) {
  set(isLoading_, true);
  std::exception_ptr error;
  try {
    co_await sendLoginRequest(std::move(email));
  } catch (...) {
    error = std::current_exception();
  }
  set(isLoading_, false);
  if (error) std::rethrow_exception(error);
}

Task<void> TavelleAccountManager::sendLoginRequest(std::string email) {
  const JSON body = {{"email", email}};
  URLRequest request = jsonRequest(std::string{hostedServiceBaseURL} + "/auth/login", body);
  const URLResult answer = co_await session_.dataForRequest(std::move(request), mainActor_);
  if (answer.response.statusCode != 200) throw TavelleAccountError::requestFailed(messageIn(answer.data));
}

void TavelleAccountManager::handleAuthCallback(const URL& url) {
  const auto items = url.queryItems();
  const auto item =
      std::find_if(items.begin(), items.end(), [](const URLQueryItem& each) { return each.name == "token"; });
  if (item == items.end() || !item->value) return;
  try {
    keychain_.save(tokenKey, *item->value);
  } catch (const KeychainError&) {
    // Signed in for this run; after the next start the person is asked to sign in again.
  }
  setSession(item->value);
}

void TavelleAccountManager::signOut() {
  keychain_.remove(tokenKey);
  setSession(std::nullopt);
}

void TavelleAccountManager::setSession(std::optional<std::string> token) {
  cachedToken_ = std::move(token);
  set(isSignedIn_, cachedToken_.has_value());
  set(email_, cachedToken_ ? decodeEmail(*cachedToken_) : std::nullopt);
}

// The token is opaque but for this: where it has the shape of a JSON Web Token, its payload may tell the address. The
// signature is the service's business.
std::optional<std::string> TavelleAccountManager::decodeEmail(std::string_view token) {
  const auto pieces = piecesOf(token);
  if (pieces.size() != 3) return std::nullopt;
  const auto payload = decodeBase64(fromBase64URL(pieces[1]));
  if (!payload) return std::nullopt;
  try {
    const JSON claims = decodeJSON(*payload);
    const auto email = claims.is_object() ? claims.find("email") : claims.end();
    return email != claims.end() && email->is_string() ? std::optional{email->get<std::string>()} : std::nullopt;
  } catch (const JSONError&) {
    return std::nullopt;  // a token of another shape signs in as well
  }
}

template <typename T>
void TavelleAccountManager::set(T& field, T value) {
  objectWillChange_.send();
  field = std::move(value);
}

}  // namespace tavelle

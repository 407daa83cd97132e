#include "llm/JSONRequest.h"

#include "platform/FatalError.h"
#include "platform/UTF8.h"

#include <utility>

namespace tavelle {
namespace {

constexpr std::chrono::seconds requestTimeout{60};

// An address that may be shown: the query can hold an API key, and so can the user information.
std::string withoutSecrets(const std::string& address) {
  auto shown = address.substr(0, address.find('?'));
  const auto authority = shown.find("//");
  const auto at = shown.rfind('@');
  if (authority != std::string::npos && at != std::string::npos && at > authority)
    shown.erase(authority + 2, at - authority - 1);
  return shown;
}

// The presets always parse, and a settings field that holds no URL is a fault that no answer of a server could tell of.
URL urlOrDie(const std::string& address) {
  auto url = URL::parse(address);
  if (!url)
    fatalError("not a URL: \"" + withoutSecrets(address) + "\" (see the base URL and the model in the settings)");
  return *std::move(url);
}

}  // namespace

URLRequest jsonRequest(const std::string& url, const JSON& body, URLHeaders headers) {
  headers.emplace(headers.begin(), "Content-Type", "application/json");
  return {.url = urlOrDie(url),
          .method = "POST",
          .headers = std::move(headers),
          .body = encodeJSON(body),
          .timeoutInterval = requestTimeout};
}

std::string messageIn(const Data& body) {
  return isUTF8(body) ? body : "Unknown error";
}

}  // namespace tavelle

// The token of a session: base64, and the address in its payload.

#include "account/Base64.h"
#include "account/TavelleAccountManager.h"
#include "platform/fake/FakePlatform.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/support/Base64Text.h"

#include <nlohmann/json.hpp>

namespace tavelle::fuzz {
namespace {

using tests::base64Alphabet;
using tests::base64URLAlphabet;
using tests::unpaddedBase64;

std::string base64(std::string_view bytes) {
  auto text = unpaddedBase64(bytes, base64Alphabet);
  text.append((4 - text.size() % 4) % 4, '=');
  return text;
}

void decodeRaw(std::string_view text) {
  const auto bytes = decodeBase64(text);
  if (!bytes) return;
  const auto again = base64(*bytes);
  require(again.size() == text.size(), "bytes are lost or made up");
  // The last character before the padding may hold bits that nothing is made of.
  const auto certain = text.size() < 4 ? 0 : text.size() - 4;
  require(again.substr(0, certain) == text.substr(0, certain), "the bytes are others");
}

std::optional<std::string> emailOf(std::string token) {
  static FakePlatform platform;
  platform.secrets.items[{keychainService, "tavelle_auth_token"}] = std::move(token);
  const TavelleAccountManager account{KeychainHelper{platform.secrets}, platform.sharedSession, platform.loop};
  return account.email();
}

void readToken(std::string_view token) {
  const auto email = emailOf(std::string{token});
  if (!email) return;
  require(isUTF8(*email), "an address that cannot be shown");
  require(email->size() < token.size(), "an address that is longer than the token");
}

void readEmail(const std::string& email) {
  const auto payload = nlohmann::json{{"email", email}}.dump();
  require(emailOf("header." + unpaddedBase64(payload, base64URLAlphabet) + ".signature") == email,
          "not the address of the token");
}

void run(Input input) {
  switch (input.choice(4)) {
    case 0:
      return readToken(input.rest());
    case 1:
      return readEmail(textOf(input.rest()));
    case 2:
      return decodeRaw(input.rest());
    default:
      require(decodeBase64(base64(input.rest())) == input.rest(), "base64 does not read back");
  }
}

}  // namespace
}  // namespace tavelle::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tavelle::fuzz::run({data, size});
  return 0;
}

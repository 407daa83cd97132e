// Addresses: base URLs of the settings, redirections, links. And what libcurl makes of them.

#include "platform/URL.h"

#include "platform/linux/curl/WebAddress.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/support/PercentEncoded.h"

namespace tavelle::fuzz {
namespace {

void checkParts(const URL& url) {
  const auto& text = url.absoluteString();
  require(std::all_of(text.begin(), text.end(), [](char c) { return c > ' ' && c < '\x7F'; }), "no URL has that");
  require(std::none_of(url.scheme().begin(), url.scheme().end(), [](char c) { return c >= 'A' && c <= 'Z'; }),
          "the scheme is not in lower case");
  require(isUTF8(url.host().value_or("")), "the host is not UTF-8");
  std::size_t size = 0;
  for (const auto& [name, value] : url.queryItems()) {
    require(isUTF8(name) && isUTF8(value.value_or("")), "a query item is not UTF-8");
    size += name.size() + value.value_or("").size();
  }
  require(size <= text.size(), "the query says more than the URL");
}

void checkAddress(const std::string& text) {
  const bool hasHost = !hostOf(text.c_str()).empty();
  require(isSameOrigin(text.c_str(), text.c_str()) == hasHost, "an address is of its own origin, and no other is");
  require(!isOnThisMachine(text.c_str()) || hasHost, "no host is this machine");
}

void parse(std::string_view text) {
  const auto url = URL::parse(text);
  if (!url) return;
  require(url->absoluteString() == text, "the text has changed");
  checkParts(*url);
  checkAddress(url->absoluteString());
}

void parseEncoded(const std::string& host, const std::string& value) {
  const auto url = URL::parse("https://" + tests::percentEncoded(host) + "/?a=" + tests::percentEncoded(value) + "&b");
  require(url.has_value(), "every octet can be encoded");
  require(url->host() == host, "the host does not come back");
  require(url->queryItems() == std::vector<URLQueryItem>{{"a", value}, {"b", std::nullopt}},
          "the query does not come back");
}

void run(Input input) {
  if (input.choice(2) == 0) return parse(input.rest());
  const auto host = textOf(input.takeUntil('\n'));
  parseEncoded(host, textOf(input.rest()));
}

}  // namespace
}  // namespace tavelle::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tavelle::fuzz::run({data, size});
  return 0;
}

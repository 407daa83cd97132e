#include "platform/URL.h"

#include "platform/PercentEncoding.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace tavelle {
namespace {

bool isOneOf(char c, std::string_view set) {
  return set.find(c) != std::string_view::npos;
}
bool isAlpha(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
bool isHexDigit(char c) {
  return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// RFC 3986 section 2: unreserved and sub-delims.
bool isPlain(char c) {
  return isAlpha(c) || isDigit(c) || isOneOf(c, "-._~!$&'()*+,;=");
}

// Every character is plain, one of `also`, or part of a percent-encoded octet.
bool consistsOf(std::string_view text, std::string_view also) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (isPlain(text[at]) || isOneOf(text[at], also)) continue;
    if (text[at] != '%' || at + 2 >= text.size() || !isHexDigit(text[at + 1]) || !isHexDigit(text[at + 2]))
      return false;
    at += 2;
  }
  return true;
}

// Section 3.1. Empty where `text` does not begin with one.
std::string_view schemeOf(std::string_view text) {
  const auto colon = text.find(':');
  if (colon == std::string_view::npos || colon == 0 || !isAlpha(text[0])) return {};
  const auto scheme = text.substr(0, colon);
  const bool valid =
      std::all_of(scheme.begin(), scheme.end(), [](char c) { return isAlpha(c) || isDigit(c) || isOneOf(c, "+-."); });
  return valid ? scheme : std::string_view{};
}

// Section 3.2: user information, host (a name, an IPv4 address or a bracketed literal) and port. The host; none where
// `text` is no authority.
std::optional<std::string> hostOf(std::string_view text) {
  if (const auto at = text.find('@'); at != std::string_view::npos) {
    if (!consistsOf(text.substr(0, at), ":")) return std::nullopt;
    text.remove_prefix(at + 1);
  }
  std::string_view host;
  std::string_view port;
  if (text.starts_with('[')) {
    const auto close = text.find(']');
    if (close == std::string_view::npos || !consistsOf(text.substr(1, close - 1), ":")) return std::nullopt;
    host = text.substr(1, close - 1);
    port = text.substr(close + 1);
    if (!port.empty() && port[0] != ':') return std::nullopt;
  } else {
    const auto colon = std::min(text.find(':'), text.size());
    host = text.substr(0, colon);
    port = text.substr(colon);
    if (!consistsOf(host, "")) return std::nullopt;
  }
  if (!port.empty() && !std::all_of(port.begin() + 1, port.end(), isDigit)) return std::nullopt;
  return std::string{host};
}

URLQueryItem queryItem(std::string_view text) {
  const auto equals = std::min(text.find('='), text.size());
  URLQueryItem item{.name = removingPercentEncoding(text.substr(0, equals)).value_or(""), .value = std::nullopt};
  if (equals < text.size()) item.value = removingPercentEncoding(text.substr(equals + 1));
  return item;
}

}  // namespace

URL::URL(std::string text, std::string scheme, std::optional<std::string> host, std::string query)
    : text_(std::move(text)), scheme_(std::move(scheme)), host_(std::move(host)), query_(std::move(query)) {}

std::optional<URL> URL::parse(std::string_view text) {
  if (text.empty()) return std::nullopt;

  std::string scheme{schemeOf(text)};
  auto rest = text.substr(scheme.empty() ? 0 : scheme.size() + 1);
  std::transform(scheme.begin(), scheme.end(), scheme.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });

  const auto cut = [&rest](char mark) {
    const auto at = std::min(rest.find(mark), rest.size());
    const auto tail = rest.substr(std::min(at + 1, rest.size()));
    rest = rest.substr(0, at);
    return tail;
  };
  const auto fragment = cut('#');
  const auto query = cut('?');
  if (!consistsOf(fragment, ":@/?") || !consistsOf(query, ":@/?")) return std::nullopt;

  std::optional<std::string> host;
  if (rest.starts_with("//")) {
    const auto path = std::min(rest.find('/', 2), rest.size());
    host = hostOf(rest.substr(2, path - 2));
    if (!host) return std::nullopt;
    rest.remove_prefix(path);
  } else if (scheme.empty() && rest.substr(0, rest.find('/')).find(':') != std::string_view::npos) {
    return std::nullopt;  // section 4.2: a relative path's first segment has no colon
  }
  if (!consistsOf(rest, ":@/")) return std::nullopt;

  return URL{std::string{text}, std::move(scheme), std::move(host), std::string{query}};
}

std::optional<std::string> URL::host() const {
  return host_ ? removingPercentEncoding(*host_) : std::nullopt;
}

std::vector<URLQueryItem> URL::queryItems() const {
  std::vector<URLQueryItem> items;
  for (std::string_view rest = query_; !rest.empty();) {
    const auto end = std::min(rest.find('&'), rest.size());
    items.push_back(queryItem(rest.substr(0, end)));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return items;
}

}  // namespace tavelle

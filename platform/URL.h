#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavelle {

// One `name=value` of a query (NSURLQueryItem), percent-decoded; a plus sign stays one.
struct URLQueryItem {
  std::string name;
  // None where there is no equals sign, and where the octets are not UTF-8.
  std::optional<std::string> value;

  bool operator==(const URLQueryItem&) const = default;
};

// A string that is a URI reference (RFC 3986): absolute, or relative such as "/chat/completions". A plain value.
class URL {
 public:
  // Reads `text`, which must be ASCII with everything else percent-encoded. Anything that the grammar refuses, and the
  // empty string, is no URL. Nothing is corrected, encoded or normalised.
  static std::optional<URL> parse(std::string_view text);

  // The text it was read from, byte for byte.
  const std::string& absoluteString() const { return text_; }

  // In lower case; empty for a relative reference.
  const std::string& scheme() const { return scheme_; }

  // Percent-decoded, in its own case, without user information, port and brackets. None where the URL has no authority,
  // and where the octets are not UTF-8.
  std::optional<std::string> host() const;

  // In order. An item whose name is not UTF-8 has the empty name.
  std::vector<URLQueryItem> queryItems() const;

 private:
  URL(std::string text, std::string scheme, std::optional<std::string> host, std::string query);

  std::string text_;
  std::string scheme_;
  std::optional<std::string> host_;
  std::string query_;
};

}  // namespace tavelle

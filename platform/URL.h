#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavelle {

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

 private:
  URL(std::string text, std::string scheme);

  std::string text_;
  std::string scheme_;
};

}  // namespace tavelle

#pragma once

#include <string>
#include <string_view>

namespace tavelle {

// Appends `text`, valid UTF-8, as a JSON string with its quotation marks (RFC 8259, section 7): only what must be
// escaped is, in the short form where there is one. Texts of a megabyte pass here on their way to a model, and the JSON
// library looks at each of their bytes by itself.
void appendJSONString(std::string& json, std::string_view text);

}  // namespace tavelle

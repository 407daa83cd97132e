#include "platform/UTF8.h"

#include <simdjson.h>

namespace tavelle {

bool isUTF8(std::string_view bytes) {
  return simdjson::validate_utf8(bytes.data(), bytes.size());
}

}  // namespace tavelle

#pragma once

#include "view/Event.h"

#include <string>
#include <string_view>

namespace tavelle::view {

// An event as one line of JSON, newline included, one of:
//
//   {"number":1,"target":7,"pressed":true}
//   {"number":2,"target":7,"edited":"text"}
//   {"number":3,"target":7,"adjusted":0.7}
//   {"number":4,"target":7,"selected":"tag"}
//   {"number":5,"target":7,"keyDown":{"keyCode":15,"modifierFlags":1179648}}
std::string encodeEvent(const Event& event);

// Throws WireError for anything that encodeEvent does not make, but for white space and the order of members.
Event decodeEvent(std::string_view line);

}  // namespace tavelle::view

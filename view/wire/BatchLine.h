#pragma once

#include "view/HostOperation.h"

#include <string>
#include <string_view>

namespace tavelle::view {

// A batch as one line of JSON, newline included:
//
//   {"lastEvent":3,"operations":[["create",7,"text",{"text":"None"}],["insert",7,1,0],["update",7,{"color":null}],
//    ["move",7,1,5],["remove",7]]}
//
// Nodes come in the order node, parent, after. An attribute that is null is not said any more. Text that is not valid
// UTF-8 arrives with replacement characters. The line holds what the fields hold, secrets included.
std::string encodeBatch(const Batch& batch);

// Throws WireError for anything that encodeBatch does not make, but for white space and the order of members.
Batch decodeBatch(std::string_view line);

}  // namespace tavelle::view

#pragma once

#include "view/Event.h"
#include "view/HostOperation.h"

#include <cstdint>
#include <map>

namespace tavelle::view {

// A renderer's side of the rule by which input and updates may cross on their way: what the person did last wins, and
// the answer to it is still to come. So typing never loses a character to an update that was made before it was heard
// of.
class UnseenInput {
 public:
  // The next event, numbered; input that changes a node's value is remembered until it has been heard of.
  Event stamp(NodeID target, Input input);

  // Leaves out the values that were set without knowledge of what the person has put in their place since.
  Batch withoutStaleValues(Batch batch);

 private:
  std::uint64_t lastNumber_ = 0;
  std::map<NodeID, std::uint64_t> unseen_;
};

}  // namespace tavelle::view

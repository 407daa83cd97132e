#include "view/UnseenInput.h"

#include "view/Input.h"

#include <utility>
#include <variant>

namespace tavelle::view {

Event UnseenInput::stamp(NodeID target, Input input) {
  ++lastNumber_;
  if (newValue(input)) unseen_[target] = lastNumber_;
  return {target, lastNumber_, std::move(input)};
}

Batch UnseenInput::withoutStaleValues(Batch batch) {
  std::erase_if(unseen_, [&batch](const auto& input) { return input.second <= batch.lastEvent; });
  std::erase_if(batch.operations, [this](HostOperation& operation) {
    auto* const update = std::get_if<Update>(&operation);
    if (!update || !unseen_.contains(update->node)) return false;
    update->attributes.erase(Attribute::value);
    return update->attributes.empty();
  });
  return batch;
}

}  // namespace tavelle::view

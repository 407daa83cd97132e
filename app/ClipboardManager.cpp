#include "app/ClipboardManager.h"

#include <optional>

namespace tavelle {

Task<void> ClipboardManager::save() {
  savedItems_.clear();
  const auto types = co_await pasteboard_.types();
  if (!types) co_return;
  std::vector<SavedItem> items;  // kept once it is whole: half of a pasteboard must never be put back
  for (const auto& type : *types) {
    std::optional<Data> data = co_await pasteboard_.dataForType(type);
    if (data) items.emplace_back(type, *std::move(data));
  }
  savedItems_ = std::move(items);
}

void ClipboardManager::restore() {
  if (savedItems_.empty()) return;
  pasteboard_.clearContents();
  for (auto& [type, data] : std::exchange(savedItems_, {})) pasteboard_.setData(std::move(data), type);
}

}  // namespace tavelle

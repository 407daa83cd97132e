#include "platform/linux/x11/ClipboardContents.h"

#include <algorithm>
#include <utility>

namespace tavelle::x11 {

void ClipboardContents::set(xcb_atom_t target, SelectionValue value) {
  const auto known = std::ranges::find(entries_, target, &Entry::target);
  if (known != entries_.end()) {
    known->value = std::move(value);
  } else {
    entries_.push_back({target, std::move(value)});
  }
}

const SelectionValue* ClipboardContents::find(xcb_atom_t target) const {
  const auto known = std::ranges::find(entries_, target, &Entry::target);
  return known != entries_.end() ? &known->value : nullptr;
}

}  // namespace tavelle::x11

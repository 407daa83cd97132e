#pragma once

#include "concurrency/Task.h"
#include "platform/Pasteboard.h"

#include <utility>
#include <vector>

namespace tavelle {

// Keeps what the person had on the pasteboard while a run uses it, and puts it back. The copy is flat: one entry for
// each type that the pasteboard has as a whole; several copied items come back as one. Main thread only.
class ClipboardManager {
 public:
  using SavedItem = std::pair<PasteboardType, Data>;

  explicit ClipboardManager(Pasteboard& pasteboard) : pasteboard_(pasteboard) {}

  // Replaces savedItems() by what is on the pasteboard now. Types without data are left out.
  Task<void> save();

  // Puts the saved items back and forgets them. With nothing saved the pasteboard is not touched, not even cleared.
  void restore();

  // In the pasteboard's own order; empty when nothing is saved.
  const std::vector<SavedItem>& savedItems() const { return savedItems_; }

 private:
  Pasteboard& pasteboard_;
  std::vector<SavedItem> savedItems_;
};

}  // namespace tavelle

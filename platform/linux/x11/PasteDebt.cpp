#include "platform/linux/x11/PasteDebt.h"

#include <utility>

namespace tavelle::x11 {

PasteDebt::PasteDebt(Connection& connection, MainActor& actor, Limits limits)
    : connection_(connection), limits_(limits), expiry_(actor, [this] { cancel(); }) {}

void PasteDebt::incur(xcb_window_t focus, std::shared_ptr<const ClipboardContents> owed) {
  creditor_ = focus;
  owed_ = std::move(owed);
  isServed_ = false;
  expiry_.set(limits_.claim);
}

std::shared_ptr<const ClipboardContents> PasteDebt::owedTo(xcb_window_t requestor) {
  if (!owed_) return nullptr;
  if (creditor_ == XCB_WINDOW_NONE && !isClipboardManager(requestor)) creditor_ = requestor;
  if (creditor_ == XCB_WINDOW_NONE || !connection_.isSameClient(creditor_, requestor)) return nullptr;
  return owed_;
}

void PasteDebt::noteServed() {
  if (!owed_ || std::exchange(isServed_, true)) return;
  expiry_.set(limits_.graceAfterServing);
}

void PasteDebt::cancel() {
  owed_.reset();
  expiry_.clear();
}

bool PasteDebt::isClipboardManager(xcb_window_t requestor) const {
  // Asked now and not watched: it matters only where the focus was unknown.
  const auto manager = connection_.ownerOf(connection_.atom("CLIPBOARD_MANAGER"));
  return manager != XCB_WINDOW_NONE && connection_.isSameClient(manager, requestor);
}

}  // namespace tavelle::x11

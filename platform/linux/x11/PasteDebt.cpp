#include "platform/linux/x11/PasteDebt.h"

#include <utility>

namespace tavelle::x11 {

PasteDebt::PasteDebt(Connection& connection, MainActor& actor, Limits limits)
    : connection_(connection), limits_(limits), expiry_(actor, [this] { cancel(); }) {}

void PasteDebt::incur(xcb_window_t focus, std::shared_ptr<const ClipboardContents> owed) {
  const bool isKnown = focus > XCB_INPUT_FOCUS_POINTER_ROOT && focus != connection_.root();
  creditor_ = isKnown ? focus : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
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
  auto& connection = connection_;
  const auto cookie = xcb_get_selection_owner(connection, connection.atom("CLIPBOARD_MANAGER"));
  const XcbReply<xcb_get_selection_owner_reply_t> manager{xcb_get_selection_owner_reply(connection, cookie, nullptr)};
  return manager && manager->owner != XCB_WINDOW_NONE && connection.isSameClient(manager->owner, requestor);
}

}  // namespace tavelle::x11

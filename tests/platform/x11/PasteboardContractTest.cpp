#include "tests/platform/contracts/PasteboardContract.h"

#include "platform/linux/MainActor.h"
#include "platform/linux/x11/EditingKey.h"
#include "platform/linux/x11/Pasteboard.h"
#include "tests/platform/x11/PeerOwner.h"
#include "tests/platform/x11/TaskResult.h"
#include "tests/platform/x11/XServer.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tavelle::tests {
namespace {

// The clipboard of a private X server, and another program on it.
class Clipboard {
 public:
  static constexpr const char* textType = "UTF8_STRING";

  Pasteboard& pasteboard() { return pasteboard_; }

  void take(const std::vector<std::pair<PasteboardType, Data>>& contents) {
    auto next = std::make_unique<x11::tests::PeerOwner>();
    for (const auto& [type, data] : contents) next->offer(type, data);
    next->own();
    owner_ = std::move(next);
    x11::tests::settle(*connection_);
  }

  template <typename T>
  T await(Task<T> task) {
    return x11::tests::resultOf(actor_, std::move(task));
  }

 private:
  x11::tests::XServer server_;
  GLibMainActor actor_;
  std::unique_ptr<x11::Connection> connection_ = x11::Connection::open();
  x11::PostedEditingKeys postedKeys_;
  x11::X11Pasteboard pasteboard_{*connection_, actor_, postedKeys_, [](const x11::PostedEditingKey&) {}};
  std::unique_ptr<x11::tests::PeerOwner> owner_;
};

INSTANTIATE_TYPED_TEST_SUITE_P(Clipboard, PasteboardContract, Clipboard);

}  // namespace
}  // namespace tavelle::tests

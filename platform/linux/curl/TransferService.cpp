#include "platform/linux/curl/TransferService.h"

#include <memory>
#include <variant>

namespace tavelle {

void TransferService::run() {
  while (true) {
    loop_.runUntilReadable(socket_.get());
    auto order = receiveOrder(socket_.get());
    if (!order) return;
    std::visit([this](auto&& each) { obey(std::forward<decltype(each)>(each)); }, *std::move(order));
  }
}

// Where the result cannot be sent, run() notices that the other side has gone.
void TransferService::obey(StartTransfer order) {
  const auto id = order.id;
  loop_.start(std::make_unique<Transfer>(std::move(order), [this, id](TransferReply::Outcome outcome) {
    static_cast<void>(sendResult(socket_.get(), {id, std::move(outcome)}));
  }));
}

void TransferService::obey(const CancelTransfer& order) {
  loop_.cancel(order.id);
}

}  // namespace tavelle

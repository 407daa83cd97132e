#include "platform/linux/curl/TransferService.h"

#include <utility>
#include <variant>

namespace tavelle {

void TransferService::run() {
  while (auto order = receiveOrder(socket_.get())) {
    std::visit([this](auto&& each) { obey(std::forward<decltype(each)>(each)); }, *std::move(order));
  }
}

void TransferService::obey(StartTransfer order) {
  const auto id = order.id;
  auto transfer =
      std::make_shared<Transfer>(std::move(order.request), std::move(order.authorities),
                                 [this, id](TransferReply::Outcome outcome) { answer(id, std::move(outcome)); });
  {
    const std::lock_guard lock{mutex_};
    transfers_.emplace(id, transfer);
  }
  loop_.start(std::move(transfer));
}

void TransferService::obey(const CancelTransfer& order) {
  if (auto transfer = take(order.id)) loop_.cancel(std::move(transfer));
}

// On the transfer thread. Where the result cannot be sent, run() notices that the other side has gone.
void TransferService::answer(std::uint64_t id, TransferReply::Outcome outcome) {
  if (const auto kept = take(id)) static_cast<void>(sendResult(socket_.get(), {id, std::move(outcome)}));
}

std::shared_ptr<Transfer> TransferService::take(std::uint64_t id) {
  const std::lock_guard lock{mutex_};
  const auto found = transfers_.extract(id);
  return found ? found.mapped() : nullptr;
}

}  // namespace tavelle

#pragma once

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/TransferFrames.h"
#include "platform/linux/curl/TransferLoop.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace tavelle {

// Carries out the orders that come from the resident process, and sends it the results.
class TransferService {
 public:
  explicit TransferService(FileDescriptor socket) : socket_(std::move(socket)) {}

  // Returns once the other side has gone.
  void run();

 private:
  void obey(StartTransfer order);
  void obey(const CancelTransfer& order);
  void answer(std::uint64_t id, TransferReply::Outcome outcome);
  std::shared_ptr<Transfer> take(std::uint64_t id);

  const FileDescriptor socket_;
  std::mutex mutex_;  // guards the next one
  std::unordered_map<std::uint64_t, std::shared_ptr<Transfer>> transfers_;
  TransferLoop loop_;  // its thread answers, and ends first
};

}  // namespace tavelle

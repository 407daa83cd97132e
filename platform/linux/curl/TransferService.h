#pragma once

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/TransferFrames.h"
#include "platform/linux/curl/TransferLoop.h"

#include <utility>

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

  const FileDescriptor socket_;
  TransferLoop loop_;
};

}  // namespace tavelle

#pragma once

#include "platform/TransferReply.h"
#include "platform/URLSession.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace tavelle {

// What goes between the resident process and the program that talks to servers, over a stream socket. The two are of
// one build. Sending waits until all has been taken, receiving until all has come. False, or nothing, once the other
// side has gone or says what nobody understands.

struct StartTransfer {
  std::uint64_t id = 0;
  URLRequest request;
  std::string authorities;  // as LinuxURLSession has it
};

// There will be no result; it may be on its way already.
struct CancelTransfer {
  std::uint64_t id = 0;
};

using TransferOrder = std::variant<StartTransfer, CancelTransfer>;

struct TransferResult {
  std::uint64_t id = 0;
  TransferReply::Outcome outcome;
};

bool sendOrder(int socket, const TransferOrder& order);
std::optional<TransferOrder> receiveOrder(int socket);

bool sendResult(int socket, const TransferResult& result);
std::optional<TransferResult> receiveResult(int socket);

}  // namespace tavelle

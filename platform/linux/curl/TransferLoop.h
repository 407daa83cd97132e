#pragma once

#include "platform/linux/curl/CurlHandles.h"
#include "platform/linux/curl/Transfer.h"

#include <poll.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

namespace tavelle {

// Drives every transfer, and keeps the connections for the next ones. It sleeps until a socket or a timer has something
// for it.
//
// It polls the sockets itself and so knows, for each transfer, whether anything at all came or went. libcurl's own
// limits cannot tell a slow server from a silent one.
class TransferLoop {
 public:
  TransferLoop();
  ~TransferLoop();
  TransferLoop(const TransferLoop&) = delete;
  TransferLoop& operator=(const TransferLoop&) = delete;

  void start(std::unique_ptr<Transfer> transfer);

  // Cancelling a transfer that has ended is nothing.
  void cancel(std::uint64_t id);

  // Goes on with the transfers until the descriptor can be read.
  void runUntilReadable(int descriptor);

 private:
  using Clock = Transfer::Clock;
  struct Socket {
    short events;
    Transfer*
        transfer;  // the one that last asked for it; null when that has ended and another goes on using it, or libcurl
  };

  bool drive(Transfer& transfer);
  void letGo(const Transfer& transfer);
  void waitForEvents(int descriptor);
  std::optional<Clock::time_point> nextDeadline() const;
  void serveSockets();
  void serveTimer();
  void finishDone();
  void giveUpOnSilent();
  static int onSocket(CURL* handle, curl_socket_t socket, int what, void* self, void*);
  static int onTimer(CURLM*, long milliseconds, void* self);

  std::unordered_map<std::uint64_t, std::unique_ptr<Transfer>> transfers_;  // by their ids
  std::unordered_map<int, Socket> sockets_;                                 // by their descriptors
  std::vector<pollfd> polled_;                                              // the first is whoever runs the loop
  std::optional<Clock::time_point> timer_;
  CurlMulti multi_;
};

}  // namespace tavelle

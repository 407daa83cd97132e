#pragma once

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/curl/CurlHandles.h"
#include "platform/linux/curl/Transfer.h"

#include <poll.h>

#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <unordered_map>
#include <vector>

namespace tavelle {

// The transfer thread: it drives every transfer, keeps the connections for the next ones, and ends with this object. It
// sleeps until a socket, a timer or another thread has something for it.
//
// It polls the sockets itself and so knows, for each transfer, whether anything at all came or went. libcurl's own
// limits cannot tell a slow server from a silent one.
class TransferLoop {
 public:
  // Throws std::system_error where there is no thread to be had.
  TransferLoop();
  ~TransferLoop();
  TransferLoop(const TransferLoop&) = delete;
  TransferLoop& operator=(const TransferLoop&) = delete;

  // Callable from any thread. Cancelling a transfer that has ended is nothing.
  void start(std::shared_ptr<Transfer> transfer);
  void cancel(std::shared_ptr<Transfer> transfer);

 private:
  using Clock = Transfer::Clock;
  enum class Order { start, cancel };
  struct Command {
    Order order;
    std::shared_ptr<Transfer> transfer;
  };
  struct Socket {
    short events;
    Transfer*
        transfer;  // the one that last asked for it; null when that has ended and another goes on using it, or libcurl
  };

  void give(Command command);
  void wake() const;

  // On the transfer thread.
  void run();
  bool obeyCommands();
  void begin(std::shared_ptr<Transfer> transfer);
  void remove(Transfer& transfer);
  bool drive(Transfer& transfer);
  void letGo(Transfer& transfer);
  void waitForEvents();
  std::optional<Clock::time_point> nextDeadline() const;
  void serveSockets();
  void serveTimer();
  void finishDone();
  void giveUpOnSilent();
  static int onSocket(CURL* handle, curl_socket_t socket, int what, void* self, void*);
  static int onTimer(CURLM*, long milliseconds, void* self);

  const FileDescriptor wakeUp_;
  std::mutex mutex_;  // guards the next two
  std::vector<Command> commands_;
  bool isEnding_ = false;

  // The transfer thread's own.
  std::vector<std::shared_ptr<Transfer>> transfers_;
  std::unordered_map<int, Socket> sockets_;
  std::vector<pollfd> polled_;
  std::optional<Clock::time_point> timer_;
  CurlMulti multi_;

  std::thread thread_;
};

}  // namespace tavelle

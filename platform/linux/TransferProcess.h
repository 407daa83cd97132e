#pragma once

#include "platform/TransferReply.h"
#include "platform/URLSession.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/TransferFrames.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

namespace tavelle {

// The program that talks to servers, `tavelle-transfers`, and the socket that joins it to this process. It is started
// for the first request and ended when it has had none for a while: libcurl brings two dozen libraries along, which
// are in memory only as long as they are of use, and what comes from the network is taken apart where there are no
// hotkeys. Callable from any thread.
class TransferProcess {
 public:
  using ID = std::uint64_t;

  struct Patience {
    std::chrono::milliseconds rest{std::chrono::seconds(15)};  // without a request, until the program is ended
    // For it to take what is given, or to go on with what it has begun to say. It is frozen where it does not, or where
    // it has left an order lying the second time that we look, so long apart.
    std::chrono::milliseconds taking{std::chrono::seconds(5)};
  };

  explicit TransferProcess(std::filesystem::path program = standardProgram())
      : TransferProcess(std::move(program), {}) {}
  TransferProcess(std::filesystem::path program, const Patience& patience);
  // Ends the program. What is still under way ends as a lost connection.
  ~TransferProcess();
  TransferProcess(const TransferProcess&) = delete;
  TransferProcess& operator=(const TransferProcess&) = delete;

  static std::filesystem::path standardProgram();

  // Has the program running, because a request is about to come.
  void prepare();

  // Starts the request, whose own limit is that of the silence. `reply` is answered in any case, unless it is cancelled
  // first.
  ID start(URLRequest request, std::string authorities, std::shared_ptr<TransferReply> reply);

  // Cancelling what has ended is nothing.
  void cancel(ID transfer);

 private:
  using Replies = std::map<ID, std::shared_ptr<TransferReply>>;

  static constexpr int none = -1;
  static constexpr ID nobodys = 0;

  void open();
  void give(const TransferOrder& order);

  // On the thread that hears what the program says, which lives as long as the program does.
  void attend(FileDescriptor ours, FileDescriptor theirs);
  Replies hear(int socket);
  bool isAwaited();
  bool leavesOrders(int socket);
  bool retireAtRest();
  Replies retire();
  std::shared_ptr<TransferReply> take(ID transfer);

  const std::filesystem::path program_;
  const Patience patience_;
  // The first of two where both are taken. Whoever gives an order has it for as long as the program takes, which may
  // just be waiting for us to take a result: the thread that hears results waits for the second one alone.
  std::mutex ordering_;  // guards the next three
  ID lastID_ = nobodys;
  int socket_ = none;  // the thread's, while the program takes orders
  std::thread thread_;
  std::mutex replying_;  // guards the next one
  Replies waiting_;
};

}  // namespace tavelle

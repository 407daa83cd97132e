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
    std::chrono::milliseconds rest{std::chrono::seconds(15)};   // without a request, until the program is ended
    std::chrono::milliseconds taking{std::chrono::seconds(5)};  // for it to take an order, or it is frozen
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

  void open();
  void give(const TransferOrder& order);

  // On the thread that hears what the program says, which lives as long as the program does.
  void attend(FileDescriptor ours, FileDescriptor theirs);
  Replies hear(int socket);
  bool retireAtRest();
  Replies retire();
  std::shared_ptr<TransferReply> take(ID transfer);

  const std::filesystem::path program_;
  const Patience patience_;
  std::mutex mutex_;  // guards the rest
  ID lastID_ = 0;
  int socket_ = none;  // the thread's, while the program takes orders
  Replies waiting_;
  std::thread thread_;
};

}  // namespace tavelle

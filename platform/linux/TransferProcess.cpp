#include "platform/linux/TransferProcess.h"

#include "platform/linux/InheritedSocket.h"
#include "platform/linux/Programs.h"
#include "platform/linux/SignalsBlocked.h"
#include "platform/linux/URLErrors.h"

#include <linux/sockios.h>
#include <poll.h>
#include <pthread.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/wait.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <system_error>
#include <utility>

namespace tavelle {
namespace {

// How the program is started: with the socket as its own, and every signal as a program has it at first.
class SpawnAttributes {
 public:
  explicit SpawnAttributes(const FileDescriptor& socket) {
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, socket.get(), inheritedDescriptor);
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes, &signals);
    sigfillset(&signals);
    posix_spawnattr_setsigdefault(&attributes, &signals);
  }
  ~SpawnAttributes() {
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
  }
  SpawnAttributes(const SpawnAttributes&) = delete;
  SpawnAttributes& operator=(const SpawnAttributes&) = delete;

  posix_spawn_file_actions_t actions{};
  posix_spawnattr_t attributes{};
};

// Throws std::system_error.
pid_t spawn(const std::filesystem::path& program, const FileDescriptor& socket) {
  const SpawnAttributes how{socket};
  std::string name = program.filename();
  const std::array<char*, 2> arguments{name.data(), nullptr};
  pid_t pid = 0;
  const int error = posix_spawn(&pid, program.c_str(), &how.actions, &how.attributes, arguments.data(), environ);
  if (error != 0) throw std::system_error{error, std::generic_category()};
  return pid;
}

void reap(pid_t pid) {
  while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) continue;
}

// `what`: SO_SNDTIMEO or SO_RCVTIMEO.
void limit(const FileDescriptor& socket, int what, std::chrono::milliseconds patience) {
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(patience);
  const timeval time{seconds.count(), std::chrono::microseconds(patience - seconds).count()};
  setsockopt(socket.get(), SOL_SOCKET, what, &time, sizeof time);
}

void answerAll(const auto& replies, const URLError& error) {
  for (const auto& [id, reply] : replies) reply->deliver(error);
}

URLError cannotStart(const std::error_code& why) {
  return {URLError::Code::unknown, "The part of Tavelle that talks to servers could not be started: " + why.message()};
}

}  // namespace

std::filesystem::path TransferProcess::standardProgram() {
  return programBeside("tavelle-transfers");
}

TransferProcess::TransferProcess(std::filesystem::path program, const Patience& patience)
    : program_(std::move(program)), patience_(patience) {}

TransferProcess::~TransferProcess() {
  {
    const std::lock_guard lock{ordering_};
    if (socket_ != none) shutdown(socket_, SHUT_RDWR);
  }
  if (thread_.joinable()) thread_.join();
}

void TransferProcess::prepare() {
  const std::lock_guard lock{ordering_};
  try {
    if (socket_ == none) open();
  } catch (const std::system_error&) {
    // The request tells why.
  }
}

TransferProcess::ID TransferProcess::start(URLRequest request, std::string authorities,
                                           std::shared_ptr<TransferReply> reply) {
  const std::lock_guard lock{ordering_};
  const auto id = ++lastID_;
  try {
    if (socket_ == none) open();
  } catch (const std::system_error& error) {
    reply->deliver(cannotStart(error.code()));
    return id;
  }
  {
    const std::lock_guard waiting{replying_};
    waiting_.emplace(id, std::move(reply));
  }
  give(StartTransfer{id, std::move(request), std::move(authorities)});
  return id;
}

void TransferProcess::cancel(ID transfer) {
  if (!take(transfer)) return;
  const std::lock_guard lock{ordering_};
  if (socket_ != none) give(CancelTransfer{transfer});
}

// Where the program has ended, or takes nothing, the thread notices, and answers what waits.
void TransferProcess::give(const TransferOrder& order) {
  if (!sendOrder(socket_, order)) shutdown(socket_, SHUT_RDWR);
}

// Throws std::system_error.
void TransferProcess::open() {
  if (thread_.joinable()) thread_.join();  // it has retired, and takes no lock any more
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    throw std::system_error{errno, std::generic_category()};
  }
  FileDescriptor ours{ends[0]};
  FileDescriptor theirs{ends[1]};
  limit(ours, SO_SNDTIMEO, patience_.taking);
  limit(ours, SO_RCVTIMEO, patience_.taking);
  const SignalsBlocked blocked;
  thread_ = std::thread{[this, ours = std::move(ours), theirs = std::move(theirs)]() mutable {
    pthread_setname_np(pthread_self(), "transfers");
    attend(std::move(ours), std::move(theirs));
  }};
  socket_ = ends[0];
}

void TransferProcess::attend(FileDescriptor ours, FileDescriptor theirs) {
  try {
    const auto pid = spawn(program_, theirs);
    theirs = {};
    const auto unanswered = hear(ours.get());
    kill(pid, SIGKILL);  // it keeps nothing that is worth waiting for, whatever it is doing
    answerAll(unanswered, urlError(URLError::Code::networkConnectionLost));
    reap(pid);
  } catch (const std::system_error& error) {
    theirs = {};
    answerAll(retire(), cannotStart(error.code()));
  }
}

// Until the program has gone, is frozen, or is not needed any more. Returns the replies that will never come.
TransferProcess::Replies TransferProcess::hear(int socket) {
  pollfd polled{socket, POLLIN, 0};
  bool leftOrders = false;  // when we last looked
  while (true) {
    const auto patience = isAwaited() ? patience_.taking : patience_.rest;
    const int ready = poll(&polled, 1, static_cast<int>(patience.count()));
    if (ready == 0) {
      if (retireAtRest()) return {};
      if (std::exchange(leftOrders, leavesOrders(socket)) && leftOrders) return retire();
    }
    if (ready <= 0) continue;
    leftOrders = false;
    auto result = receiveResult(socket);
    if (!result) return retire();
    if (const auto reply = take(result->id)) reply->deliver(std::move(result->outcome));
  }
}

bool TransferProcess::isAwaited() {
  const std::lock_guard lock{replying_};
  return !waiting_.empty();
}

// However silent the servers are, a program that is not frozen takes its orders at once. To have one to take, it is
// told to cancel nobody's transfer.
bool TransferProcess::leavesOrders(int socket) {
  const std::unique_lock lock{ordering_, std::try_to_lock};
  if (!lock) return false;  // one is being given at this moment
  int left = 0;
  ioctl(socket, SIOCOUTQ, &left);
  if (left == 0) give(CancelTransfer{nobodys});
  return left > 0;
}

bool TransferProcess::retireAtRest() {
  const std::unique_lock ordering{ordering_, std::try_to_lock};
  if (!ordering) return false;
  const std::lock_guard replying{replying_};
  if (!waiting_.empty()) return false;
  socket_ = none;
  return true;
}

TransferProcess::Replies TransferProcess::retire() {
  const std::scoped_lock lock{ordering_, replying_};
  socket_ = none;
  return std::exchange(waiting_, {});
}

std::shared_ptr<TransferReply> TransferProcess::take(ID transfer) {
  const std::lock_guard lock{replying_};
  const auto found = waiting_.extract(transfer);
  return found ? found.mapped() : nullptr;
}

}  // namespace tavelle

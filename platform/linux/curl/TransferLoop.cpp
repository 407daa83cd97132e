#include "platform/linux/curl/TransferLoop.h"

#include "platform/linux/SignalsBlocked.h"
#include "platform/linux/URLErrors.h"

#include <pthread.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

namespace tavelle {
namespace {

FileDescriptor makeWakeUp() {
  FileDescriptor event{eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
  if (!event) throw std::system_error(errno, std::generic_category(), "eventfd");
  return event;
}

short pollEvents(int what) {
  return static_cast<short>(((what & CURL_POLL_IN) ? POLLIN : 0) | ((what & CURL_POLL_OUT) ? POLLOUT : 0));
}

int curlEvents(short events) {
  return ((events & (POLLIN | POLLHUP)) ? CURL_CSELECT_IN : 0) | ((events & POLLOUT) ? CURL_CSELECT_OUT : 0) |
         ((events & (POLLERR | POLLNVAL)) ? CURL_CSELECT_ERR : 0);
}

}  // namespace

TransferLoop::TransferLoop() : wakeUp_(makeWakeUp()) {
  const SignalsBlocked blocked;
  thread_ = std::thread{[this] { run(); }};
}

TransferLoop::~TransferLoop() {
  {
    const std::lock_guard lock{mutex_};
    isEnding_ = true;
  }
  wake();
  thread_.join();
}

void TransferLoop::start(std::shared_ptr<Transfer> transfer) {
  give({Order::start, std::move(transfer)});
}

void TransferLoop::cancel(std::shared_ptr<Transfer> transfer) {
  give({Order::cancel, std::move(transfer)});
}

void TransferLoop::give(Command command) {
  {
    const std::lock_guard lock{mutex_};
    commands_.push_back(std::move(command));
  }
  wake();
}

void TransferLoop::wake() const {
  // It can only fail where wake-ups by the billion are still unread, and then one more changes nothing.
  static_cast<void>(eventfd_write(wakeUp_.get(), 1));
}

void TransferLoop::run() {
  pthread_setname_np(pthread_self(), "transfers");
  curl_global_init(CURL_GLOBAL_DEFAULT);
  multi_.reset(curl_multi_init());
  if (multi_) {
    curl_multi_setopt(multi_.get(), CURLMOPT_SOCKETFUNCTION, &TransferLoop::onSocket);
    curl_multi_setopt(multi_.get(), CURLMOPT_SOCKETDATA, this);
    curl_multi_setopt(multi_.get(), CURLMOPT_TIMERFUNCTION, &TransferLoop::onTimer);
    curl_multi_setopt(multi_.get(), CURLMOPT_TIMERDATA, this);
  }
  while (obeyCommands()) {
    waitForEvents();
    serveSockets();
    serveTimer();
    finishDone();
    giveUpOnSilent();
  }
  while (!transfers_.empty()) remove(*transfers_.back());
  multi_.reset();
}

// False once the loop is to end.
bool TransferLoop::obeyCommands() {
  std::vector<Command> commands;
  bool goOn = true;
  {
    const std::lock_guard lock{mutex_};
    commands.swap(commands_);
    goOn = !isEnding_;
  }
  for (auto& [order, transfer] : commands) {
    if (order == Order::start) {
      begin(std::move(transfer));
    } else {
      remove(*transfer);
    }
  }
  return goOn;
}

void TransferLoop::begin(std::shared_ptr<Transfer> transfer) {
  CURL* handle = transfer->prepare();
  if (!handle || curl_multi_add_handle(multi_.get(), handle) != CURLM_OK) {
    transfer->finish(urlError(URLError::Code::unknown));
    return;
  }
  transfers_.push_back(std::move(transfer));
}

void TransferLoop::remove(Transfer& transfer) {
  const auto found =
      std::find_if(transfers_.begin(), transfers_.end(), [&](const auto& each) { return each.get() == &transfer; });
  if (found == transfers_.end()) return;
  const auto kept = std::move(*found);
  transfers_.erase(found);
  letGo(transfer);
}

void TransferLoop::waitForEvents() {
  polled_.clear();
  polled_.push_back({wakeUp_.get(), POLLIN, 0});
  for (const auto& [descriptor, socket] : sockets_) polled_.push_back({descriptor, socket.events, 0});

  timespec left{};
  const auto deadline = nextDeadline();
  if (deadline) {
    const auto nanoseconds =
        std::max(std::chrono::nanoseconds{*deadline - Clock::now()}, std::chrono::nanoseconds{0}).count();
    left = {nanoseconds / 1'000'000'000, nanoseconds % 1'000'000'000};
  }
  ppoll(polled_.data(), polled_.size(), deadline ? &left : nullptr, nullptr);
  if (polled_.front().revents != 0) {
    eventfd_t count = 0;
    eventfd_read(wakeUp_.get(), &count);
  }
}

std::optional<TransferLoop::Clock::time_point> TransferLoop::nextDeadline() const {
  auto next = timer_;
  for (const auto& each : transfers_) next = std::min(next.value_or(each->deadline()), each->deadline());
  return next;
}

void TransferLoop::serveSockets() {
  for (const auto& ready : polled_) {
    if (ready.revents == 0 || ready.fd == wakeUp_.get()) continue;
    const auto found = sockets_.find(ready.fd);
    if (found == sockets_.end()) continue;  // closed while its predecessors in the list were served
    if (found->second.transfer) found->second.transfer->noteActivity();
    int running = 0;
    curl_multi_socket_action(multi_.get(), ready.fd, curlEvents(ready.revents), &running);
  }
}

void TransferLoop::serveTimer() {
  if (!timer_ || *timer_ > Clock::now()) return;
  timer_.reset();
  int running = 0;
  curl_multi_socket_action(multi_.get(), CURL_SOCKET_TIMEOUT, 0, &running);
}

void TransferLoop::finishDone() {
  int left = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &left)) {
    if (message->msg != CURLMSG_DONE) continue;
    auto& transfer = *Transfer::of(message->easy_handle);
    const auto result = message->data.result;
    if (result == CURLE_OK && transfer.followRedirection() && drive(transfer)) continue;
    transfer.finish(result);
    remove(transfer);
  }
}

// Once more from the start, with what the transfer's handle says now.
bool TransferLoop::drive(Transfer& transfer) {
  letGo(transfer);
  return curl_multi_add_handle(multi_.get(), transfer.handle()) == CURLM_OK;
}

void TransferLoop::letGo(Transfer& transfer) {
  curl_multi_remove_handle(multi_.get(), transfer.handle());
  for (auto& [descriptor, socket] : sockets_) {
    if (socket.transfer == &transfer) socket.transfer = nullptr;
  }
}

void TransferLoop::giveUpOnSilent() {
  const auto now = Clock::now();
  for (const auto& each : std::vector{transfers_}) {
    if (each->deadline() > now) continue;
    each->finish(urlError(URLError::Code::timedOut));
    remove(*each);
  }
}

int TransferLoop::onSocket(CURL* handle, curl_socket_t socket, int what, void* self, void*) {
  auto& sockets = static_cast<TransferLoop*>(self)->sockets_;
  if (what == CURL_POLL_REMOVE) {
    sockets.erase(socket);
  } else {
    sockets[socket] = {pollEvents(what), Transfer::of(handle)};
  }
  return 0;
}

int TransferLoop::onTimer(CURLM*, long milliseconds, void* self) {
  auto& timer = static_cast<TransferLoop*>(self)->timer_;
  timer.reset();
  if (milliseconds >= 0) timer = Clock::now() + std::chrono::milliseconds(milliseconds);
  return 0;
}

}  // namespace tavelle

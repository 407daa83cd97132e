#include "platform/linux/curl/TransferLoop.h"

#include "platform/linux/URLErrors.h"

#include <algorithm>
#include <utility>

namespace tavelle {
namespace {

short pollEvents(int what) {
  return static_cast<short>(((what & CURL_POLL_IN) ? POLLIN : 0) | ((what & CURL_POLL_OUT) ? POLLOUT : 0));
}

int curlEvents(short events) {
  return ((events & (POLLIN | POLLHUP)) ? CURL_CSELECT_IN : 0) | ((events & POLLOUT) ? CURL_CSELECT_OUT : 0) |
         ((events & (POLLERR | POLLNVAL)) ? CURL_CSELECT_ERR : 0);
}

}  // namespace

TransferLoop::TransferLoop() : multi_(curl_multi_init()) {
  curl_multi_setopt(multi_.get(), CURLMOPT_SOCKETFUNCTION, &TransferLoop::onSocket);
  curl_multi_setopt(multi_.get(), CURLMOPT_SOCKETDATA, this);
  curl_multi_setopt(multi_.get(), CURLMOPT_TIMERFUNCTION, &TransferLoop::onTimer);
  curl_multi_setopt(multi_.get(), CURLMOPT_TIMERDATA, this);
}

TransferLoop::~TransferLoop() {
  for (const auto& [id, transfer] : transfers_) letGo(*transfer);
}

void TransferLoop::start(std::unique_ptr<Transfer> transfer) {
  CURL* handle = transfer->prepare();
  if (!handle || curl_multi_add_handle(multi_.get(), handle) != CURLM_OK) {
    transfer->finish(urlError(URLError::Code::unknown));
    return;
  }
  const auto id = transfer->id();
  transfers_.emplace(id, std::move(transfer));
}

void TransferLoop::cancel(std::uint64_t id) {
  if (const auto found = transfers_.extract(id)) letGo(*found.mapped());
}

void TransferLoop::runUntilReadable(int descriptor) {
  do {
    waitForEvents(descriptor);
    serveSockets();
    serveTimer();
    finishDone();
    giveUpOnSilent();
  } while (polled_.front().revents == 0);
}

void TransferLoop::waitForEvents(int descriptor) {
  polled_.clear();
  polled_.push_back({descriptor, POLLIN, 0});
  for (const auto& [open, socket] : sockets_) polled_.push_back({open, socket.events, 0});

  timespec left{};
  const auto deadline = nextDeadline();
  if (deadline) {
    const auto nanoseconds =
        std::max(std::chrono::nanoseconds{*deadline - Clock::now()}, std::chrono::nanoseconds{0}).count();
    left = {nanoseconds / 1'000'000'000, nanoseconds % 1'000'000'000};
  }
  // What interrupts it leaves nothing to serve.
  if (ppoll(polled_.data(), polled_.size(), deadline ? &left : nullptr, nullptr) < 0) polled_.resize(1);
}

std::optional<TransferLoop::Clock::time_point> TransferLoop::nextDeadline() const {
  auto next = timer_;
  for (const auto& [id, each] : transfers_) next = std::min(next.value_or(each->deadline()), each->deadline());
  return next;
}

void TransferLoop::serveSockets() {
  for (const auto& ready : polled_) {
    const auto found = sockets_.find(ready.fd);
    // Not libcurl's, or closed by it while others in the list were served.
    if (ready.revents == 0 || found == sockets_.end()) continue;
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
    cancel(transfer.id());
  }
}

// Once more from the start, with what the transfer's handle says now.
bool TransferLoop::drive(Transfer& transfer) {
  letGo(transfer);
  return curl_multi_add_handle(multi_.get(), transfer.handle()) == CURLM_OK;
}

void TransferLoop::letGo(const Transfer& transfer) {
  curl_multi_remove_handle(multi_.get(), transfer.handle());
  for (auto& [descriptor, socket] : sockets_) {
    if (socket.transfer == &transfer) socket.transfer = nullptr;
  }
}

void TransferLoop::giveUpOnSilent() {
  const auto now = Clock::now();
  std::erase_if(transfers_, [&](const auto& each) {
    auto& transfer = *each.second;
    if (transfer.deadline() > now) return false;
    transfer.finish(urlError(URLError::Code::timedOut));
    letGo(transfer);
    return true;
  });
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

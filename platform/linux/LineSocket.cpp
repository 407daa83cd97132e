#include "platform/linux/LineSocket.h"

#include "view/wire/WireError.h"

#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <utility>

namespace tavelle {
namespace {

// Far beyond what a settings window says at once, a prompt of megabytes included.
constexpr std::size_t limit = 64UL * 1024 * 1024;

bool hasToWait(int error) {
  return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

}  // namespace

LineSocket::LineSocket(FileDescriptor socket, Handlers handlers)
    : socket_(std::move(socket)),
      handlers_(std::move(handlers)),
      incoming_(limit),
      readable_(makeSource(
          "line socket: readable", [this] { read(); }, socket_.get())) {}

// One piece at a time: the rest of the main loop has its turn in between.
void LineSocket::read() {
  std::array<char, 64UL * 1024> piece;  // NOLINT(cppcoreguidelines-pro-type-member-init): recv fills it
  const auto count = recv(socket_.get(), piece.data(), piece.size(), MSG_DONTWAIT);
  if (count < 0 && hasToWait(errno)) return;
  if (count < 0) return lose(std::strerror(errno));
  if (count == 0) return lose("it has closed the connection");
  try {
    incoming_.append({piece.data(), static_cast<std::size_t>(count)});
    while (const auto line = incoming_.take()) handlers_.onLine(*line);
  } catch (const view::WireError& error) {
    lose(error.what());
  }
}

void LineSocket::send(const std::string& line) {
  if (!readable_ || overflow_) return;
  outgoing_.erase(0, std::exchange(sent_, 0));
  outgoing_ += line;
  write();
  if (outgoing_.size() - sent_ <= limit) return;
  // Told on another turn: whoever sends does not expect to lose the socket meanwhile.
  overflow_ = makeSource("line socket: overflow", [this] { lose("it takes nothing any more"); });
  g_source_set_ready_time(overflow_.get(), 0);
}

void LineSocket::write() {
  while (sent_ < outgoing_.size()) {
    const std::string_view rest = std::string_view{outgoing_}.substr(sent_);
    const auto count = ::send(socket_.get(), rest.data(), rest.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    if (count < 0 && hasToWait(errno)) {
      if (!writable_) {
        writable_ = makeSource(
            "line socket: writable", [this] { write(); }, socket_.get(), G_IO_OUT);
      }
      return;
    }
    if (count < 0) break;  // reading tells what has become of the other side
    sent_ += static_cast<std::size_t>(count);
  }
  outgoing_.clear();
  sent_ = 0;
  writable_.reset();
}

void LineSocket::lose(const std::string& why) {
  readable_.reset();
  writable_.reset();
  overflow_.reset();
  const auto onLost = std::exchange(handlers_.onLost, nullptr);
  onLost(why);
}

}  // namespace tavelle

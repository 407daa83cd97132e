// What the resident process and the program that talks to servers say to each other.

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/TransferFrames.h"
#include "tests/fuzz/Fuzz.h"

#include <sys/socket.h>

#include <array>
#include <type_traits>
#include <variant>

namespace tavelle::fuzz {
namespace {

// What `receive` makes of what `say` has sent; then the stream ends.
template <typename Say, typename Receive>
auto heard(const Say& say, const Receive& receive) {
  std::array<int, 2> ends{};
  require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) == 0, "there are no sockets");
  const FileDescriptor near{ends[0]};
  const FileDescriptor far{ends[1]};
  say(near.get());
  shutdown(near.get(), SHUT_WR);
  return receive(far.get());
}

bool isSame(const StartTransfer& one, const StartTransfer& other) {
  return one.id == other.id && one.authorities == other.authorities &&
         one.request.url.absoluteString() == other.request.url.absoluteString() &&
         one.request.method == other.request.method && one.request.headers == other.request.headers &&
         one.request.body == other.request.body && one.request.timeoutInterval == other.request.timeoutInterval;
}
bool isSame(const CancelTransfer& one, const CancelTransfer& other) {
  return one.id == other.id;
}
bool isSame(const URLResult& one, const URLResult& other) {
  return one.data == other.data && one.response.statusCode == other.response.statusCode;
}
bool isSame(const URLError& one, const URLError& other) {
  return one.code() == other.code() && one.errorDescription() == other.errorDescription();
}
bool isSame(std::monostate, std::monostate) {
  return false;  // no result at all is never sent
}

template <typename Variant>
bool areSame(const Variant& one, const Variant& other) {
  return one.index() == other.index() &&
         std::visit([&other](const auto& each) { return isSame(each, std::get<std::decay_t<decltype(each)>>(other)); },
                    one);
}

void run(std::string_view bytes) {
  const auto sayBytes = [bytes](int socket) { send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT); };
  if (const auto order = heard(sayBytes, receiveOrder)) {
    const auto again =
        heard([&](int socket) { require(sendOrder(socket, *order), "an order is not sent"); }, receiveOrder);
    require(again && areSame(*again, *order), "an order does not read back");
  }
  if (const auto result = heard(sayBytes, receiveResult)) {
    const auto again =
        heard([&](int socket) { require(sendResult(socket, *result), "a result is not sent"); }, receiveResult);
    require(again && again->id == result->id && areSame(again->outcome, result->outcome),
            "a result does not read back");
  }
}

}  // namespace
}  // namespace tavelle::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tavelle::fuzz::run(tavelle::fuzz::Input{data, size}.rest());
  return 0;
}

#include "platform/linux/TransferFrames.h"

#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <exception>
#include <string_view>
#include <utility>

namespace tavelle {
namespace {

// A frame is the sizes of two parts, as two numbers of eight bytes, and the parts: the head, which is made of numbers
// and of texts with their sizes before them, and the body of the request or answer as it is.
struct Frame {
  std::string head;
  Data body;
};

using Sizes = std::array<std::uint64_t, 2>;

// Of a part: far beyond any text or answer.
constexpr std::uint64_t largest = 1ULL << 32;

enum class Kind : std::uint64_t { start, cancel, response, responseWithStatus, error };

bool sendAll(int socket, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto count = send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (count >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      return false;
    }
  }
  return true;
}

bool receiveAll(int socket, char* bytes, std::size_t size) {
  while (size > 0) {
    const auto count = recv(socket, bytes, size, MSG_WAITALL);
    if (count == 0 || (count < 0 && errno != EINTR)) return false;
    if (count < 0) continue;
    bytes += count;
    size -= static_cast<std::size_t>(count);
  }
  return true;
}

bool sendFrame(int socket, const std::string& head, std::string_view body) {
  const Sizes sizes{head.size(), body.size()};
  std::string front(sizeof sizes, '\0');
  std::memcpy(front.data(), sizes.data(), sizeof sizes);
  return sendAll(socket, front + head) && sendAll(socket, body);
}

// Takes memory for what has come, and not for what is promised.
std::optional<std::string> receivePart(int socket, std::uint64_t size) {
  constexpr std::uint64_t piece = 1ULL << 20;
  std::string part;
  while (part.size() < size) {
    const auto begin = part.size();
    part.resize(begin + std::min(piece, size - begin));
    if (!receiveAll(socket, part.data() + begin, part.size() - begin)) return std::nullopt;
  }
  return part;
}

std::optional<Frame> receiveFrame(int socket) {
  Sizes sizes{};
  if (!receiveAll(socket, reinterpret_cast<char*>(sizes.data()), sizeof sizes)) return std::nullopt;
  if (sizes[0] > largest || sizes[1] > largest) return std::nullopt;
  try {
    auto head = receivePart(socket, sizes[0]);
    auto body = head ? receivePart(socket, sizes[1]) : std::nullopt;
    return body ? std::optional{Frame{*std::move(head), *std::move(body)}} : std::nullopt;
  } catch (const std::exception&) {
    return std::nullopt;  // there is no memory for it
  }
}

class HeadWriter {
 public:
  HeadWriter(Kind kind, std::uint64_t id) { number(static_cast<std::uint64_t>(kind)).number(id); }

  HeadWriter& number(std::uint64_t value) {
    std::array<char, sizeof value> bytes{};
    std::memcpy(bytes.data(), &value, sizeof value);
    head_.append(bytes.data(), bytes.size());
    return *this;
  }

  HeadWriter& text(std::string_view value) {
    number(value.size());
    head_ += value;
    return *this;
  }

  const std::string& head() const { return head_; }

 private:
  std::string head_;
};

// Zeros and empty texts from where the head ends too early.
class HeadReader {
 public:
  explicit HeadReader(std::string_view head) : rest_(head) {}

  std::uint64_t number() {
    std::uint64_t value = 0;
    if (const auto bytes = take(sizeof value); !bytes.empty()) std::memcpy(&value, bytes.data(), sizeof value);
    return value;
  }

  std::string text() { return std::string{take(number())}; }

  bool hasMore() const { return isSound_ && !rest_.empty(); }

  // Whether the head was read to its end, and held all that was asked for.
  bool isDone() const { return isSound_ && rest_.empty(); }

 private:
  std::string_view take(std::uint64_t size) {
    isSound_ = isSound_ && size <= rest_.size();
    if (!isSound_) return {};
    const auto taken = rest_.substr(0, size);
    rest_.remove_prefix(size);
    return taken;
  }

  std::string_view rest_;
  bool isSound_ = true;
};

bool sendStart(int socket, const StartTransfer& order) {
  const auto& [url, method, headers, body, silence] = order.request;
  HeadWriter writer{Kind::start, order.id};
  writer.text(url.absoluteString()).text(method).text(order.authorities);
  writer.number(static_cast<std::uint64_t>(silence.count())).number(headers.size());
  for (const auto& [name, value] : headers) writer.text(name).text(value);
  return sendFrame(socket, writer.head(), body);
}

std::optional<StartTransfer> readStart(std::uint64_t id, HeadReader& head, Data body) {
  auto url = URL::parse(head.text());
  auto method = head.text();
  auto authorities = head.text();
  const std::chrono::seconds silence{head.number()};
  URLHeaders headers;
  for (auto left = head.number(); left > 0 && head.hasMore(); --left) {
    auto name = head.text();
    headers.emplace_back(std::move(name), head.text());
  }
  if (!url || !head.isDone()) return std::nullopt;
  return StartTransfer{
      id, {*std::move(url), std::move(method), std::move(headers), std::move(body), silence}, std::move(authorities)};
}

}  // namespace

bool sendOrder(int socket, const TransferOrder& order) {
  if (const auto* start = std::get_if<StartTransfer>(&order)) return sendStart(socket, *start);
  return sendFrame(socket, HeadWriter{Kind::cancel, std::get<CancelTransfer>(order).id}.head(), {});
}

std::optional<TransferOrder> receiveOrder(int socket) {
  auto frame = receiveFrame(socket);
  if (!frame) return std::nullopt;
  HeadReader head{frame->head};
  const auto kind = Kind{head.number()};
  const auto id = head.number();
  if (kind == Kind::start) return readStart(id, head, std::move(frame->body));
  if (kind != Kind::cancel || !head.isDone()) return std::nullopt;
  return CancelTransfer{id};
}

bool sendResult(int socket, const TransferResult& result) {
  if (const auto* error = std::get_if<URLError>(&result.outcome)) {
    HeadWriter writer{Kind::error, result.id};
    writer.number(static_cast<std::uint64_t>(error->code())).text(error->errorDescription());
    return sendFrame(socket, writer.head(), {});
  }
  const auto& [data, response] = std::get<URLResult>(result.outcome);
  HeadWriter writer{response.statusCode ? Kind::responseWithStatus : Kind::response, result.id};
  writer.number(static_cast<std::uint64_t>(response.statusCode.value_or(0)));
  return sendFrame(socket, writer.head(), data);
}

std::optional<TransferResult> receiveResult(int socket) {
  auto frame = receiveFrame(socket);
  if (!frame) return std::nullopt;
  HeadReader head{frame->head};
  const auto kind = Kind{head.number()};
  TransferResult result{head.number(), {}};
  const auto number = static_cast<int>(head.number());
  if (kind == Kind::error) {
    result.outcome = URLError{URLError::Code{number}, head.text()};
  } else if (kind == Kind::responseWithStatus) {
    result.outcome = URLResult{std::move(frame->body), {number}};
  } else if (kind == Kind::response) {
    result.outcome = URLResult{std::move(frame->body), {}};
  } else {
    return std::nullopt;
  }
  return head.isDone() ? std::optional{std::move(result)} : std::nullopt;
}

}  // namespace tavelle

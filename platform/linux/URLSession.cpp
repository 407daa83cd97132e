#include "platform/linux/URLSession.h"

#include "platform/TransferReply.h"
#include "platform/linux/URLErrors.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <optional>
#include <string_view>
#include <utility>

namespace tavelle {
namespace {

bool isWeb(const URL& url) {
  const auto& scheme = url.scheme();
  return (scheme == "http" || scheme == "https") && url.absoluteString().compare(scheme.size(), 3, "://") == 0;
}

// libcurl would take the next word of "http:///word" for the host.
bool hasHost(const URL& url) {
  const auto at = url.scheme().size() + 3;
  return at < url.absoluteString().size() &&
         std::string_view{"/?#"}.find(url.absoluteString()[at]) == std::string_view::npos;
}

// RFC 9110 section 5.1.
bool isFieldName(std::string_view name) {
  static constexpr std::string_view marks = "!#$%&'*+-.^_`|~";
  return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || marks.find(c) != marks.npos;
  });
}

// A line break in a value would begin another header, and a NUL would end it early.
bool isFieldValue(std::string_view value) {
  return value.find_first_of(std::string_view{"\r\n\0", 3}) == value.npos;
}

// Why the request cannot be sent at all. A header's value may be a key, and stays out of the words.
std::optional<URLError> objection(const URLRequest& request) {
  if (!isWeb(request.url)) return urlError(URLError::Code::unsupportedURL);
  if (!hasHost(request.url)) return urlError(URLError::Code::badURL);
  if (!isFieldName(request.method)) return URLError{URLError::Code::unknown, "The request's method is no HTTP method."};
  for (const auto& [name, value] : request.headers) {
    if (!isFieldName(name)) return URLError{URLError::Code::unknown, "A header of the request has no valid name."};
    if (!isFieldValue(value)) {
      return URLError{URLError::Code::unknown, "The header “" + name + "” of the request holds a line break."};
    }
  }
  return std::nullopt;
}

}  // namespace

// What the session and its tasks share. Callable from any thread.
class LinuxURLSession::State {
 public:
  using ID = TransferProcess::ID;

  State(std::chrono::seconds longestSilence, std::shared_ptr<TransferProcess> process, std::string authorities)
      : longestSilence_(longestSilence), process_(std::move(process)), authorities_(std::move(authorities)) {}

  // Starts the request. `reply` is answered in any case, be it at once.
  std::optional<ID> begin(URLRequest request, const std::shared_ptr<TransferReply>& reply) {
    if (auto error = objection(request)) {
      reply->deliver(std::move(*error));
      return std::nullopt;
    }
    const std::lock_guard lock{mutex_};
    if (hasEnded_) {
      reply->deliver(urlError(URLError::Code::cancelled));
      return std::nullopt;
    }
    request.timeoutInterval = std::min(longestSilence_, request.timeoutInterval);
    const auto transfer = process_->start(std::move(request), authorities_, reply);
    inFlight_.emplace(transfer, reply);
    return transfer;
  }

  // The task is done with the transfer, or has been dropped with the transfer still `unfinished`.
  void end(ID transfer, bool unfinished) {
    const std::lock_guard lock{mutex_};
    if (inFlight_.erase(transfer) > 0 && unfinished) process_->cancel(transfer);
  }

  void endSession() {
    const std::lock_guard lock{mutex_};
    hasEnded_ = true;
    for (const auto& [transfer, reply] : std::exchange(inFlight_, {})) {
      reply->deliver(urlError(URLError::Code::cancelled));
      process_->cancel(transfer);
    }
  }

 private:
  const std::chrono::seconds longestSilence_;
  const std::shared_ptr<TransferProcess> process_;
  const std::string authorities_;
  std::mutex mutex_;
  bool hasEnded_ = false;
  std::map<ID, std::shared_ptr<TransferReply>> inFlight_;
};

LinuxURLSession::LinuxURLSession(const URLSessionConfiguration& configuration, std::shared_ptr<TransferProcess> process,
                                 std::string authorities)
    : state_(std::make_shared<State>(configuration.timeoutIntervalForRequest, std::move(process),
                                     std::move(authorities))) {}

LinuxURLSession::~LinuxURLSession() {
  state_->endSession();
}

Task<URLResult> LinuxURLSession::dataForRequest(URLRequest request, Executor& executor) {
  return load(state_, std::move(request), &executor);
}

Task<URLResult> LinuxURLSession::load(std::shared_ptr<State> state, URLRequest request, Executor* executor) {
  // Lives in the coroutine's frame, so that dropping the task ends it too.
  struct Loading {
    std::shared_ptr<State> state;
    std::shared_ptr<TransferReply> reply;
    std::optional<State::ID> transfer;
    ~Loading() {
      const bool unfinished = reply->abandon();
      if (transfer) state->end(*transfer, unfinished);
    }
  };
  const auto reply = std::make_shared<TransferReply>(*executor);
  const Loading loading{state, reply, state->begin(std::move(request), reply)};
  co_await reply->arrival();
  co_return reply->take();
}

}  // namespace tavelle

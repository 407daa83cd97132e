#include "platform/macos/URLSession.h"

#include "platform/TransferReply.h"
#include "platform/macos/Strings.h"

#include <utility>

namespace tavelle {
namespace {

NSURLSession* makeSession(const URLSessionConfiguration& given) {
  NSURLSessionConfiguration* const configuration = NSURLSessionConfiguration.defaultSessionConfiguration;
  configuration.timeoutIntervalForRequest = static_cast<NSTimeInterval>(given.timeoutIntervalForRequest.count());
  return [NSURLSession sessionWithConfiguration:configuration];
}

NSURLRequest* makeRequest(const URLRequest& given) {
  NSURL* const url = [NSURL URLWithString:nsString(given.url.absoluteString())];
  if (!url) throw URLError{URLError::Code::badURL, "bad URL"};
  NSMutableURLRequest* const request = [NSMutableURLRequest requestWithURL:url];
  request.timeoutInterval = static_cast<NSTimeInterval>(given.timeoutInterval.count());
  request.HTTPMethod = nsString(given.method);
  for (const auto& [name, value] : given.headers) [request setValue:nsString(value) forHTTPHeaderField:nsString(name)];
  if (!given.body.empty()) request.HTTPBody = nsData(given.body);
  return request;
}

TransferReply::Outcome outcome(NSData* data, NSURLResponse* response, NSError* error) {
  if (error) {
    const auto code = [error.domain isEqualToString:NSURLErrorDomain] ? static_cast<URLError::Code>(error.code)
                                                                      : URLError::Code::unknown;
    return URLError{code, utf8(error.localizedDescription)};
  }
  URLResult result{bytesOf(data), {}};
  if ([response isKindOfClass:NSHTTPURLResponse.class]) {
    result.response.statusCode = static_cast<int>(((NSHTTPURLResponse*)response).statusCode);
  }
  return result;
}

}  // namespace

std::unique_ptr<MacURLSession> MacURLSession::shared() {
  return std::unique_ptr<MacURLSession>{new MacURLSession{NSURLSession.sharedSession, true}};
}

MacURLSession::MacURLSession(const URLSessionConfiguration& configuration)
    : MacURLSession(makeSession(configuration), false) {}

MacURLSession::~MacURLSession() {
  if (!isShared_) [session_ invalidateAndCancel];
}

Task<URLResult> MacURLSession::dataForRequest(URLRequest request, Executor& executor) {
  return load(session_, std::move(request), &executor);
}

Task<URLResult> MacURLSession::load(NSURLSession* session, URLRequest request, Executor* executor) {
  // Lives in the coroutine's frame, so that dropping the task ends it too.
  struct Loading {
    std::shared_ptr<TransferReply> reply;
    NSURLSessionDataTask* task;
    ~Loading() {
      if (reply->abandon()) [task cancel];
    }
  };
  const auto reply = std::make_shared<TransferReply>(*executor);
  const Loading loading{reply, [session dataTaskWithRequest:makeRequest(request)
                                          completionHandler:^(NSData* data, NSURLResponse* response, NSError* error) {
                                            reply->deliver(outcome(data, response, error));
                                          }]};
  [loading.task resume];
  co_await reply->arrival();
  co_return reply->take();
}

}  // namespace tavelle

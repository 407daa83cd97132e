#pragma once

#include "platform/TransferReply.h"
#include "platform/linux/TransferFrames.h"
#include "platform/linux/curl/CurlHandles.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

namespace tavelle {

// One request on its way: what is sent, what has come back, and since when there has been silence.
class Transfer {
 public:
  using Clock = std::chrono::steady_clock;

  using Answer = std::function<void(TransferReply::Outcome outcome)>;

  // The request's own limit is that of the silence. `answer` is called once, unless the transfer is cancelled first.
  Transfer(StartTransfer order, Answer answer);
  ~Transfer();
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;

  // Makes the handle for a multi handle to drive. Null where there is no memory for it.
  CURL* prepare();

  // The handle's transfer; null for libcurl's own handles, on which it ends connections.
  static Transfer* of(CURL* handle);

  std::uint64_t id() const { return id_; }
  CURL* handle() const { return handle_.get(); }

  // A byte came or went, or the connection got a step further.
  void noteActivity() { lastActivity_ = Clock::now(); }

  // When the silence will have been too long.
  Clock::time_point deadline() const { return lastActivity_ + request_.timeoutInterval; }

  // True where the answer at hand sends the request elsewhere: the handle is then ready to be driven again.
  bool followRedirection();

  // Hands over the answer, or the error.
  void finish(CURLcode result);
  void finish(URLError error) { answer_(std::move(error)); }

 private:
  void setConnectionOptions();
  bool setAddress(const std::string& address);
  void setMessageOptions();
  void setCallbacks();
  bool setHeaders(bool toStranger);
  bool append(const char* bytes, std::size_t count);

  static std::size_t onBody(char* bytes, std::size_t size, std::size_t count, void* transfer);
  static std::size_t onHeader(char* bytes, std::size_t size, std::size_t count, void* transfer);
  static int onProgress(void* transfer, curl_off_t, curl_off_t received, curl_off_t, curl_off_t sent);

  const std::uint64_t id_;
  const URLRequest request_;
  const std::string authorities_;
  const Answer answer_;
  Data body_;
  int redirections_ = 0;
  curl_off_t moved_ = 0;
  Clock::time_point lastActivity_;
  CurlList headers_;
  CurlEasy handle_;  // refers to the request and the headers, and goes first
};

}  // namespace tavelle

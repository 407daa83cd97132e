#pragma once

#import <Foundation/Foundation.h>

#include "platform/URLSession.h"

namespace tavelle {

class MacURLSession : public URLSession {
 public:
  // NSURLSession.sharedSession, which is never ended.
  static std::unique_ptr<MacURLSession> shared();

  // A session of its own, with the default configuration but for what `configuration` says. It ends, and cancels what
  // is in flight, with this object.
  explicit MacURLSession(const URLSessionConfiguration& configuration);
  ~MacURLSession() override;

  Task<URLResult> dataForRequest(URLRequest request, Executor& executor) override;

 private:
  MacURLSession(NSURLSession* session, bool isShared) : session_(session), isShared_(isShared) {}
  static Task<URLResult> load(NSURLSession* session, URLRequest request, Executor* executor);

  NSURLSession* session_;
  bool isShared_;
};

}  // namespace tavelle

#pragma once

#include "platform/fake/FakePlatform.h"
#include "platform/linux/MainActor.h"
#include "platform/linux/SerialExecutor.h"
#include "platform/linux/URLSession.h"

#include <chrono>
#include <memory>
#include <optional>

namespace tavelle::tests {

// The in-memory desktop with the real network, clock and threads.
class WiredPlatform : public FakePlatform {
 public:
  MainActor& mainActor() override { return actor; }
  std::unique_ptr<SerialExecutor> makeSerialExecutor() override { return std::make_unique<LinuxSerialExecutor>(); }
  std::unique_ptr<URLSession> makeURLSession(const URLSessionConfiguration& configuration) override {
    return std::make_unique<CurlURLSession>(patience ? URLSessionConfiguration{*patience} : configuration);
  }

  GLibMainActor actor;
  std::optional<std::chrono::seconds> patience;  // in place of what the program grants a silent server
};

}  // namespace tavelle::tests

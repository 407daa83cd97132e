#include "platform/fake/MainActor.h"
#include "tests/platform/contracts/MainActorContract.h"
#include "tests/platform/contracts/SerialExecutorContract.h"
#include "tests/platform/fake/Crank.h"

#include <memory>

namespace tavelle::tests {
namespace {

struct HandCrankedLoop {
  MainActor& actor() { return loop; }
  std::chrono::nanoseconds now() const { return loop.now(); }
  bool waitUntil(const std::function<bool()>& isTrue) { return crankUntil(loop, isTrue); }

  EventLog log;
  FakeMainActor loop{log};
};

struct ExecutorOfTheLoop : HandCrankedLoop {
  SerialExecutor& executor() { return *own; }
  void endExecutor() { own.reset(); }
  MainActor& home() { return loop; }

  std::unique_ptr<SerialExecutor> own = std::make_unique<FakeSerialExecutor>(loop);
};

INSTANTIATE_TYPED_TEST_SUITE_P(HandCranked, MainActorContract, HandCrankedLoop);
INSTANTIATE_TYPED_TEST_SUITE_P(HandCranked, SerialExecutorContract, ExecutorOfTheLoop);

}  // namespace
}  // namespace tavelle::tests

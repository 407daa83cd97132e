#pragma once

#include "platform/Application.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tavelle::tests {

// What every backend's application object does. A `Backend` is made afresh for each test and has application() and
// run(whenLaunched), which runs the application, does that once it is launched, and returns the exit status; what is to
// be done ends with the application's end.
//
// That another start is told to the first instance is the real backends' alone: it takes two processes.
//
//     INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, ApplicationContract, InMemoryBackend);
template <typename Backend>
class ApplicationContract : public testing::Test {
 protected:
  using Words = std::vector<std::string>;

  // Notes what it is told.
  struct Delegate : ApplicationDelegate {
    explicit Delegate(Words& words) : told(words) {}
    void applicationWillFinishLaunching() override { told.emplace_back("will finish launching"); }
    void applicationDidFinishLaunching() override { told.emplace_back("did finish launching"); }
    void applicationShouldHandleReopen() override { told.emplace_back("should handle reopen"); }
    void applicationWillTerminate() override { told.emplace_back("will terminate"); }

    Words& told;
  };

  Application& application() { return backend_.application(); }
  int run(const std::function<void()>& whenLaunched) { return backend_.run(whenLaunched); }

  Words told;
  std::shared_ptr<Delegate> delegate = std::make_shared<Delegate>(told);

 private:
  Backend backend_;
};

TYPED_TEST_SUITE_P(ApplicationContract);

TYPED_TEST_P(ApplicationContract, tellsItsDelegateOfItsLaunchAndItsEndInOrder) {
  this->application().setDelegate(this->delegate);
  const int status = this->run([this] {
    this->told.emplace_back("launched");
    this->application().terminate();
  });
  EXPECT_EQ(status, 0);
  EXPECT_EQ(this->told,
            (std::vector<std::string>{"will finish launching", "did finish launching", "launched", "will terminate"}));
}

TYPED_TEST_P(ApplicationContract, endsOnce) {
  this->application().setDelegate(this->delegate);
  this->run([this] {
    this->told.clear();
    this->application().terminate();
    this->application().terminate();
  });
  EXPECT_EQ(this->told, std::vector<std::string>{"will terminate"});
}

TYPED_TEST_P(ApplicationContract, tellsADelegateThatCameLater) {
  this->application().setDelegate(this->delegate);
  std::vector<std::string> toldLater;
  const auto later = std::make_shared<typename ApplicationContract<TypeParam>::Delegate>(toldLater);
  this->run([&] {
    this->application().setDelegate(later);
    this->application().terminate();
  });
  EXPECT_EQ(this->told, (std::vector<std::string>{"will finish launching", "did finish launching"}));
  EXPECT_EQ(toldLater, std::vector<std::string>{"will terminate"});
}

TYPED_TEST_P(ApplicationContract, holdsItsDelegateWeakly) {
  this->application().setDelegate(this->delegate);
  EXPECT_EQ(this->delegate.use_count(), 1);
  this->run([this] {
    this->told.clear();
    this->delegate.reset();
    this->application().terminate();
  });
  EXPECT_TRUE(this->told.empty());
}

REGISTER_TYPED_TEST_SUITE_P(ApplicationContract, tellsItsDelegateOfItsLaunchAndItsEndInOrder, endsOnce,
                            tellsADelegateThatCameLater, holdsItsDelegateWeakly);

}  // namespace tavelle::tests

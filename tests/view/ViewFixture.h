#pragma once

#include "view/Component.h"
#include "view/Nodes.h"
#include "view/Reconciler.h"
#include "view/State.h"
#include "view/headless/HeadlessRenderer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tavelle::view::tests {

// A loop whose turns the test takes.
class Loop {
 public:
  Reconciler::Schedule schedule() {
    return [this](std::function<void()> job) { jobs_.push_back(std::move(job)); };
  }

  // Runs what is waiting, and returns how many jobs that was.
  std::size_t turn() {
    const auto jobs = std::exchange(jobs_, {});
    for (const auto& job : jobs) job();
    return jobs.size();
  }

 private:
  std::vector<std::function<void()>> jobs_;
};

// A component that is drawn by a function of the test's.
class Drawn : public Component {
 public:
  explicit Drawn(std::function<Node(Component&)> draw) : draw_(std::move(draw)) {}
  Node body() override { return draw_(*this); }

 private:
  std::function<Node(Component&)> draw_;
};

// A tree that is drawn by a function, shown by a headless renderer.
class ViewFixture : public testing::Test {
 protected:
  void show(std::function<Node()> draw) {
    showNode(component<Drawn>(std::function<Node(Component&)>{[this, draw = std::move(draw)](Component& root) {
      root_ = &root;
      return draw();
    }}));
  }

  void showNode(Node root) {
    reconciler = std::make_shared<Reconciler>(std::move(root), loop.schedule());
    reconciler->attach(&screen);
    built = screen.takeLog();
  }

  // Draws anew, and tells what that took.
  std::vector<std::string> redraw() {
    root_->invalidate();
    loop.turn();
    return screen.takeLog();
  }

  Loop loop;
  std::shared_ptr<Reconciler> reconciler;
  HeadlessRenderer screen{[this](const Event& event) { reconciler->dispatch(event); }};
  std::vector<std::string> built;  // what showing it took

 private:
  Component* root_ = nullptr;
};

}  // namespace tavelle::view::tests

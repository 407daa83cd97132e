#pragma once

#include "view/KeyCaptureView.h"

#include <functional>
#include <memory>

namespace tavelle::view {

// How a renderer makes a KeyCaptureView of what a key-capture node says, and keeps it in step.
struct KeyDownListener {
  bool isEnabled = false;
  std::function<void(const KeyDown&)> handler;

  // Not enabled before the first update.
  std::shared_ptr<KeyCaptureView> makeView() const {
    auto view = std::make_shared<KeyCaptureView>();
    view->handler = handler;
    return view;
  }

  void updateView(KeyCaptureView& view) const {
    view.isEnabled = isEnabled;
    view.handler = handler;
  }
};

}  // namespace tavelle::view

#pragma once

#include "view/Nodes.h"

#include <functional>
#include <utility>

namespace tavelle {

// Has every key down of the window delivered to `handler`, and to nothing else, while it is enabled: a KeyDownListener
// in the background of any content.
struct OnKeyDownModifier {
  bool isEnabled;
  std::function<void(const view::KeyDown&)> handler;

  view::Node body(view::Node content) const { return view::keyCapture(isEnabled, handler, std::move(content)); }
};

}  // namespace tavelle

#pragma once

#include "view/Event.h"
#include "view/HostOperation.h"

namespace tavelle::view {

// What draws a tree of nodes: widgets in this process or in another, or a tree in memory.
class Renderer {
 public:
  virtual ~Renderer() = default;

  virtual void apply(const Batch& batch) = 0;
};

// What a renderer draws, and where it reports what the person does.
class Content {
 public:
  virtual ~Content() = default;

  // Sends all that is to be shown, and from then on each change, until another renderer is attached or none (null). A
  // renderer that takes over draws the same state: nothing of it was ever kept in a renderer.
  virtual void attach(Renderer* renderer) = 0;

  // Events of the renderer that is attached, in the order of their numbers.
  virtual void dispatch(const Event& event) = 0;
};

}  // namespace tavelle::view

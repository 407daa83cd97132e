#pragma once

#include "platform/macos/renderer/Containers.h"
#include "platform/macos/renderer/EventMonitors.h"
#include "view/Renderer.h"
#include "view/UnseenInput.h"

#include <map>
#include <set>

namespace tavelle::appkit {

// Draws nodes in a window by AppKit's own views. Main thread only.
class AppKitRenderer : public view::Renderer {
 public:
  AppKitRenderer(NSWindow* window, std::function<void(const view::Event&)> dispatch);
  ~AppKitRenderer() override;

  void apply(const view::Batch& batch) override;

 private:
  void perform(const view::Create& create);
  void perform(const view::Update& update);
  void perform(const view::Insert& insert);
  void perform(const view::Move& move);
  void perform(const view::Remove& remove);

  std::unique_ptr<Widget> make(view::NodeType type, Send send);
  Widget& at(view::NodeID node);
  void take(view::NodeID node, view::Input input);
  void place(Widget& widget, view::NodeID parent, view::NodeID after);
  void detach(Widget& widget);
  void forget(Widget& widget);

  NSWindow* window_;
  std::function<void(const view::Event&)> dispatch_;
  view::UnseenInput input_;
  MacEventMonitors monitors_;
  Wrapper root_;
  std::map<view::NodeID, std::unique_ptr<Widget>> widgets_;
  std::set<Widget*> rearranged_;  // whose children are others now
};

}  // namespace tavelle::appkit

#pragma once

#include "platform/linux/GSourcePtr.h"
#include "platform/linux/gtk/Widgets.h"
#include "view/Renderer.h"
#include "view/UnseenInput.h"

#include <functional>
#include <map>
#include <optional>
#include <vector>

namespace tavelle::gtk {

// The tree of nodes as widgets. An edit is sent once the toolkit is through with it: it takes a selection out before it
// puts in what is typed over it, and tells of a text in between that the person never sees.
class GtkRenderer : public view::Renderer {
 public:
  using Send = std::function<void(const view::Event&)>;
  using SetContent = std::function<void(GtkWidget*)>;

  // `setContent` puts the root's widget into the window; null takes it out.
  GtkRenderer(const Surroundings& surroundings, SetContent setContent, Send send);

  // Throws view::WireError where the steps do not fit what is there.
  void apply(const view::Batch& batch) override;

  // What the person did so far is sent, where it has not been.
  void sendEdit();

 private:
  struct Mounted {
    view::NodeID parent = 0;
    std::vector<view::NodeID> children;
    WidgetPtr widget;
  };

  struct Edit {
    view::NodeID node;
    view::Input input;
  };

  void perform(const view::Create& create);
  void perform(const view::Update& update);
  void perform(const view::Insert& insert);
  void perform(const view::Move& move);
  void perform(const view::Remove& remove);

  WidgetPtr make(const view::Create& create, Widget::Report report) const;
  Mounted& at(view::NodeID node);
  Widget* widgetAt(view::NodeID node);  // null for 0
  void forget(view::NodeID node);

  void take(view::NodeID node, view::Input input);

  const Surroundings surroundings_;
  const SetContent setContent_;
  const Send send_;
  view::UnseenInput input_;
  std::map<view::NodeID, Mounted> nodes_;
  std::optional<Edit> edit_;  // not sent yet
  GSourcePtr editSource_;
};

}  // namespace tavelle::gtk

#pragma once

#include "view/KeyDownListener.h"
#include "view/Renderer.h"
#include "view/UnseenInput.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tavelle::view {

// A window in memory, and a person in front of it: what is shown can be read, and pressed, and typed into. What is
// asked for by name is the first node, from the top, whose title, text, label or symbol is that; where there is none,
// or it cannot be done, std::logic_error tells what is shown instead.
class HeadlessRenderer : public Renderer, public EventMonitors {
 public:
  // One widget.
  struct Widget {
    NodeID node;
    NodeType type;
    Attributes attributes;
    Widget* parent = nullptr;
    std::vector<std::unique_ptr<Widget>> children;
    std::size_t cursor = 0;  // in the text of a field, in bytes
    std::shared_ptr<KeyCaptureView> capture;

    std::string string(Attribute attribute) const;
    bool isEnabled() const;
  };

  using Send = std::function<void(const Event&)>;
  explicit HeadlessRenderer(Send send) : send_(std::move(send)) {}

  void apply(const Batch& batch) override;

  Token addLocalMonitorForEventsMatchingMask(std::uint64_t mask, Block block) override;
  void removeMonitor(Token token) override;

  // What is shown.
  bool shows(std::string_view name) const;
  const Widget& widget(std::string_view name) const;
  const Widget& widget(NodeType type, std::size_t index = 0) const;
  std::vector<const Widget*> all(NodeType type) const;
  std::vector<std::string> texts() const;          // what can be read, from the top
  std::string value(std::string_view name) const;  // of a field, a list or a picker
  std::string focused() const;                     // the name of the field that has the keyboard; empty for none

  // What the person does. They do nothing to what is disabled.
  void press(std::string_view name);
  void choose(const Widget& chooser, std::string_view tag);
  void adjust(const Widget& slider, double value);
  void focus(const Widget& field);
  void moveCursor(std::size_t position);
  void type(std::string_view text);                              // at the cursor, in the field that has the keyboard
  void replaceText(const Widget& field, std::string_view text);  // selects all of it, and types

  // A key goes down that types `text`, if nobody takes it.
  void keyDown(const KeyDown& event, std::string_view text);
  // A modifier alone goes down: an event of another kind.
  void modifiersChange();

  // The steps since it was last taken, as describe() tells them.
  std::vector<std::string> takeLog() { return std::exchange(log_, {}); }
  std::size_t batches() const { return batches_; }

 private:
  void perform(const Create& create);
  void perform(const Update& update);
  void perform(const Insert& insert);
  void perform(const Move& move);
  void perform(const Remove& remove);

  Widget& at(NodeID node) const;
  void place(std::unique_ptr<Widget> widget, NodeID parent, NodeID after);
  static std::unique_ptr<Widget> detach(Widget& widget);
  void forget(const Widget& widget);
  KeyDownListener listener(const Widget& widget);
  void edit(Widget& field, std::string text, std::size_t cursor);
  const Widget* find(const std::function<bool(const Widget&)>& matches) const;
  std::string everything() const;

  struct Monitor {
    std::uint64_t mask;
    Block block;
  };

  Send send_;
  UnseenInput input_;
  Widget root_{};
  std::map<NodeID, std::unique_ptr<Widget>> created_;  // not inserted yet
  std::map<NodeID, Widget*> widgets_;
  std::map<Token, Monitor> monitors_;
  Token lastMonitor_ = 0;
  NodeID focus_ = 0;
  std::vector<std::string> log_;
  std::size_t batches_ = 0;
};

}  // namespace tavelle::view

#pragma once

#include "view/Component.h"
#include "view/Node.h"
#include "view/Renderer.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace tavelle::view {

// Keeps a renderer in step with what the components say, by as few operations as that takes.
//
// A change marks its component; one flush on a later turn of the loop has the marked ones drawn again, compares, and
// sends one batch. An event is heard by the tree as the events before it left it: what is marked is drawn first. What
// the person changed in a control counts as shown, so that it is not sent back to where it came from: a text field
// whose text is right already keeps its cursor and its input method.
//
// Held by shared_ptr. One thread only.
class Reconciler : public Content, public std::enable_shared_from_this<Reconciler> {
 public:
  // Runs a job on a later turn of the loop.
  using Schedule = std::function<void(std::function<void()> job)>;

  Reconciler(Node root, Schedule schedule);
  ~Reconciler() override;

  void attach(Renderer* renderer) override;
  void dispatch(const Event& event) override;

 private:
  struct Mounted;
  // Below `parent`, right behind `after`.
  struct Place {
    NodeID parent;
    NodeID after;
  };

  void flush();
  void send();
  void mark(Mounted& component);
  void redraw(Mounted& component);

  std::unique_ptr<Mounted> mount(Node node, Mounted* owner, Place place);
  void patch(Mounted& mounted, Node next);
  void patchChildren(Mounted& owner, std::vector<Node> next, Place place);
  void unmount(const Mounted& mounted);
  void show(const Mounted& mounted, Place place);
  void showAll(const Mounted& mounted, Place place);

  Schedule schedule_;
  Renderer* renderer_ = nullptr;
  Batch batch_{};
  bool isFlushScheduled_ = false;
  NodeID lastNode_ = 0;
  std::map<NodeID, Mounted*> nodes_;
  std::uint64_t lastComponent_ = 0;
  std::map<std::uint64_t, Mounted*> marked_;  // by number: a component has a higher one than those it stands in
  std::unique_ptr<Mounted> root_;
};

}  // namespace tavelle::view

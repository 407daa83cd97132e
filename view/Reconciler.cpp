#include "view/Reconciler.h"

#include "view/Input.h"
#include "view/Matching.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace tavelle::view {

// A node that stands in the tree. Its attributes are those that the renderer shows.
struct Reconciler::Mounted {
  Mounted(std::uint64_t itsNumber, Mounted* itsOwner, Node itself)
      : number(itsNumber), owner(itsOwner), node(std::move(itself)) {}

  std::uint64_t number;  // the renderer's, or a component's own
  Mounted* owner;
  Node node;  // without its children
  std::shared_ptr<Component> instance;
  std::vector<std::unique_ptr<Mounted>> children;  // of a component: what it is drawn as

  ~Mounted() {
    if (instance) instance->onInvalidated_ = nullptr;  // work in progress may hold it a little longer
  }

  bool isComponent() const { return instance != nullptr; }

  // The number by which the renderer knows it.
  NodeID host() const { return isComponent() ? children.front()->host() : number; }

  Place place() const {
    if (!owner) return {0, 0};
    if (owner->isComponent()) return owner->place();
    const auto& all = owner->children;
    const auto self = std::find_if(all.begin(), all.end(), [this](const auto& one) { return one.get() == this; });
    return {owner->number, self == all.begin() ? 0 : (*std::prev(self))->host()};
  }
};

namespace {

const Node& nodeOf(const Node& node) {
  return node;
}

template <typename Pointer>
const Node& nodeOf(const Pointer& mounted) {
  return mounted->node;
}

template <typename All>
std::vector<Identity> identities(const All& all) {
  std::vector<Identity> result;
  result.reserve(all.size());
  for (const auto& one : all) {
    const Node& node = nodeOf(one);
    result.push_back({node.key, node.type, node.component.type});
  }
  return result;
}

}  // namespace

Reconciler::Reconciler(Node root, Schedule schedule)
    : schedule_(std::move(schedule)), root_(mount(std::move(root), nullptr, {0, 0})) {}

Reconciler::~Reconciler() = default;

void Reconciler::attach(Renderer* renderer) {
  flush();
  renderer_ = renderer;
  batch_ = {};
  if (renderer) showAll(*root_, {0, 0});
  send();
}

void Reconciler::dispatch(const Event& event) {
  flush();
  batch_.lastEvent = event.number;
  const auto found = nodes_.find(event.target);
  if (found == nodes_.end()) return;  // it was taken away while the event was on its way

  Mounted& mounted = *found->second;
  if (auto value = newValue(event.input)) {
    mounted.node.attributes.set(Attribute::value, *std::move(value));
    // What it is bound to may see it differently, and then says so when it is drawn again.
    Mounted* drawer = &mounted;
    while (drawer && !drawer->isComponent()) drawer = drawer->owner;
    if (drawer) mark(*drawer);
  }
  const auto* const isEnabled = mounted.node.attributes.get<bool>(Attribute::enabled);
  if (mounted.node.onInput && (!isEnabled || *isEnabled)) mounted.node.onInput(event.input);
}

void Reconciler::flush() {
  while (!marked_.empty()) redraw(*marked_.extract(marked_.begin()).mapped());
  send();
}

void Reconciler::send() {
  if (batch_.operations.empty()) return;
  const Batch batch{batch_.lastEvent, std::exchange(batch_.operations, {})};
  if (renderer_) renderer_->apply(batch);
}

void Reconciler::mark(Mounted& component) {
  marked_.emplace(component.number, &component);
  if (std::exchange(isFlushScheduled_, true)) return;
  schedule_([weak = weak_from_this()] {
    const auto self = weak.lock();
    if (!self) return;
    self->isFlushScheduled_ = false;
    self->flush();
  });
}

void Reconciler::redraw(Mounted& component) {
  std::vector<Node> body;
  body.push_back(component.instance->body());
  patchChildren(component, std::move(body), component.place());
}

std::unique_ptr<Reconciler::Mounted> Reconciler::mount(Node node, Mounted* owner, Place place) {
  auto children = std::exchange(node.children, {});
  const bool isComponent = node.component.make != nullptr;
  auto mounted = std::make_unique<Mounted>(isComponent ? ++lastComponent_ : ++lastNode_, owner, std::move(node));
  if (isComponent) {
    const auto& instance = mounted->instance = mounted->node.component.make();
    instance->onAppear();
    instance->onInvalidated_ = [this, component = mounted.get()] { mark(*component); };
    children.push_back(instance->body());
    patchChildren(*mounted, std::move(children), place);
  } else {
    nodes_.emplace(mounted->number, mounted.get());
    show(*mounted, place);
    patchChildren(*mounted, std::move(children), {mounted->number, 0});
  }
  return mounted;
}

void Reconciler::unmount(const Mounted& mounted) {
  (mounted.isComponent() ? marked_ : nodes_).erase(mounted.number);
  for (const auto& child : mounted.children) unmount(*child);
}

// A component says itself when it changes.
void Reconciler::patch(Mounted& mounted, Node next) {
  if (mounted.isComponent()) return;
  auto changes = mounted.node.attributes.changesTo(next.attributes);
  if (!changes.empty()) batch_.operations.emplace_back(Update{mounted.number, std::move(changes)});
  auto children = std::exchange(next.children, {});
  mounted.node = std::move(next);
  patchChildren(mounted, std::move(children), {mounted.number, 0});
}

void Reconciler::patchChildren(Mounted& owner, std::vector<Node> next, Place place) {
  auto previous = std::exchange(owner.children, {});
  const auto matches = match(identities(previous), identities(next));
  std::vector<std::unique_ptr<Mounted>> children(next.size());
  for (std::size_t at = 0; at < next.size(); ++at) {
    if (matches[at]) children[at] = std::move(previous[*matches[at]]);
  }
  for (const auto& gone : previous) {
    if (!gone) continue;
    batch_.operations.emplace_back(Remove{gone->host()});
    unmount(*gone);
  }

  const auto stays = staying(matches);
  for (std::size_t at = 0; at < next.size(); ++at) {
    auto& child = children[at];
    if (!child) {
      child = mount(std::move(next[at]), &owner, place);
    } else {
      if (!stays[at]) batch_.operations.emplace_back(Move{place.parent, child->host(), place.after});
      patch(*child, std::move(next[at]));
    }
    place.after = child->host();
  }
  owner.children = std::move(children);
}

void Reconciler::show(const Mounted& mounted, Place place) {
  batch_.operations.emplace_back(Create{mounted.number, mounted.node.type, mounted.node.attributes});
  batch_.operations.emplace_back(Insert{place.parent, mounted.number, place.after});
}

void Reconciler::showAll(const Mounted& mounted, Place place) {
  if (!mounted.isComponent()) {
    show(mounted, place);
    place = {mounted.number, 0};
  }
  for (const auto& child : mounted.children) {
    showAll(*child, place);
    place.after = child->host();
  }
}

}  // namespace tavelle::view

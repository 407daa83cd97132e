#include "view/TabView.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace tavelle::view {

TabView::TabView(std::vector<Tab> tabs) : tabs_(std::move(tabs)) {}

Node TabView::body() {
  Node view = Node{NodeType::tabView}.with(Attribute::value, chosen_.get());
  view.onInput = [this](const Input& input) {
    if (const auto* selected = std::get_if<Selected>(&input)) choose(selected->tag);
  };
  for (const auto& tab : tabs_) {
    Node node = Node{NodeType::tab}
                    .keyed(tab.title)
                    .with(Attribute::title, tab.title)
                    .with(Attribute::tag, tab.title)
                    .mnemonic(tab.mnemonic)
                    .with(Attribute::symbol, tab.symbol);
    if (tab.title == chosen_.get()) node.children.push_back(tab.content);
    view.children.push_back(std::move(node));
  }
  return view;
}

void TabView::choose(const std::string& title) {
  const bool exists = std::any_of(tabs_.begin(), tabs_.end(), [&title](const Tab& tab) { return tab.title == title; });
  if (exists) chosen_.set(title);
}

}  // namespace tavelle::view

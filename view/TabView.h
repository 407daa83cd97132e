#pragma once

#include "view/Component.h"
#include "view/State.h"

#include <string>
#include <vector>

namespace tavelle::view {

struct Tab {
  std::string title;
  std::string mnemonic;
  std::string symbol;
  Node content;
};

// Tabs, of which the first is shown, and then the one that the person chose for as long as the view lives. Only the tab
// that is shown has content: what a tab's components keep ends when another is chosen.
class TabView : public Component {
 public:
  explicit TabView(std::vector<Tab> tabs);

  Node body() override;

 private:
  void choose(const std::string& title);

  const std::vector<Tab> tabs_;
  State<std::string> chosen_{*this, tabs_.front().title};
};

}  // namespace tavelle::view

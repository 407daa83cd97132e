#include "ui/SettingsView.h"

#include "ui/AboutTab.h"
#include "ui/GeneralSettingsTab.h"
#include "ui/ProviderSettingsTab.h"
#include "view/Nodes.h"
#include "view/TabView.h"

#include <vector>

namespace tavelle {

using namespace view;

Node SettingsView::body() {
  const std::vector<Tab> tabs{{"General", "G", "gear", component<GeneralSettingsTab>()},
                              {"Provider", "P", "cloud", component<ProviderSettingsTab>()},
                              {"About", "A", "info.circle", component<AboutTab>()}};
  return verticalStack(component<TabView>(tabs)).frame(480, 500);
}

}  // namespace tavelle

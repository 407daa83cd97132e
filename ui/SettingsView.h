#pragma once

#include "view/Component.h"

namespace tavelle {

// All that the settings window shows: three tabs, in a content of 480 by 500 points.
class SettingsView : public view::Component {
 public:
  view::Node body() override;
};

}  // namespace tavelle

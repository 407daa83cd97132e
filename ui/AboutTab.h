#pragma once

#include "view/Component.h"

namespace tavelle {

// The third tab: icon, name, version and what it is for.
class AboutTab : public view::Component {
 public:
  view::Node body() override;
};

}  // namespace tavelle

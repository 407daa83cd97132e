#include "ui/AboutTab.h"

#include "platform/Platform.h"
#include "view/Nodes.h"

#include <string>
#include <variant>

namespace tavelle {

using namespace view;

namespace {

std::string version() {
  const auto value = Platform::current().mainBundle().objectForInfoDictionaryKey("CFBundleShortVersionString");
  const auto* const text = value ? std::get_if<std::string>(&*value) : nullptr;
  return text ? *text : "1.0.0";
}

}  // namespace

Node AboutTab::body() {
  return verticalStack(spacer(), image("AboutIcon").frame(96, 96), text("Tavelle").font(Font::title).bold(),
                       text("Version " + version()).color(Color::secondary),
                       text("A macOS menu bar utility that rewords selected text using LLMs.")
                           .color(Color::secondary)
                           .maximumWidth(300),
                       spacer())
      .spacing(16)
      .filling();
}

}  // namespace tavelle

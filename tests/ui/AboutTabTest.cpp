#include "ui/AboutTab.h"

#include "tests/ui/UIFixture.h"

namespace tavelle::tests {
namespace {

using testing::ElementsAre;

class AboutTabTest : public UIFixture {
 protected:
  std::string version() {
    show<AboutTab>();
    return screen->texts().at(1);
  }
};

TEST_F(AboutTabTest, showsIconNameVersionAndDescriptionBetweenTwoSpaces) {
  show<AboutTab>();
  const auto& stack = screen->widget(NodeType::stack);
  std::vector<NodeType> types;
  for (const auto& child : stack.children) types.push_back(child->type);
  EXPECT_THAT(types, ElementsAre(NodeType::spacer, NodeType::image, NodeType::text, NodeType::text, NodeType::text,
                                 NodeType::spacer));
  EXPECT_THAT(screen->texts(), ElementsAre("Tavelle", "Version 1.0.0",
                                           "A macOS menu bar utility that rewords selected text using LLMs."));
  EXPECT_EQ(*stack.attributes.get<double>(Attribute::spacing), 16);
  EXPECT_TRUE(*stack.attributes.get<bool>(Attribute::fills));
}

TEST_F(AboutTabTest, stylesWhatItShows) {
  show<AboutTab>();
  const auto& icon = screen->widget(NodeType::image).attributes;
  EXPECT_EQ(*icon.get<std::string>(Attribute::image), "AboutIcon");
  EXPECT_EQ(*icon.get<double>(Attribute::width), 96);
  EXPECT_EQ(*icon.get<double>(Attribute::height), 96);
  EXPECT_EQ(styleOf("Tavelle", Attribute::font), "title");
  EXPECT_TRUE(*screen->widget("Tavelle").attributes.get<bool>(Attribute::bold));
  EXPECT_EQ(styleOf("Version 1.0.0", Attribute::color), "secondary");
  const auto& description = screen->widget(NodeType::text, 2);
  EXPECT_EQ(description.string(Attribute::color), "secondary");
  EXPECT_EQ(*description.attributes.get<double>(Attribute::maximumWidth), 300);
}

TEST_F(AboutTabTest, showsTheBundlesVersion) {
  platform.bundle.info["CFBundleShortVersionString"] = std::string{"2.3"};
  EXPECT_EQ(version(), "Version 2.3");
}

TEST_F(AboutTabTest, shows100WithoutAVersion) {
  EXPECT_EQ(version(), "Version 1.0.0");
}

TEST_F(AboutTabTest, takesAVersionThatIsNoStringForNone) {
  platform.bundle.info["CFBundleShortVersionString"] = 2.3;
  EXPECT_EQ(version(), "Version 1.0.0");
  platform.bundle.info["CFBundleShortVersionString"] = true;
  EXPECT_EQ(version(), "Version 1.0.0");
}

}  // namespace
}  // namespace tavelle::tests

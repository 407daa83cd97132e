#include "tests/ui/UIFixture.h"
#include "ui/SettingsView.h"
#include "view/wire/BatchLine.h"
#include "view/wire/EventLine.h"

namespace tavelle::tests {
namespace {

// A renderer that is reached through lines alone, as one in another process is.
class RemoteRenderer : public view::Renderer {
 public:
  explicit RemoteRenderer(std::function<void(const view::Event&)> send)
      : screen([send = std::move(send)](const view::Event& event) {
          send(view::decodeEvent(view::encodeEvent(event)));
        }) {}

  void apply(const view::Batch& batch) override { screen.apply(view::decodeBatch(view::encodeBatch(batch))); }

  view::HeadlessRenderer screen;
};

using SettingsOverTheWireTest = UIFixture;

TEST_F(SettingsOverTheWireTest, areTheSameOverTheWire) {
  show<SettingsView>();
  RemoteRenderer remote{[this](const view::Event& event) { reconciler->dispatch(event); }};
  const auto here = screen->takeLog();
  reconciler->attach(&remote);
  EXPECT_EQ(remote.screen.takeLog(), here);

  remote.screen.focus(remote.screen.widget("Name:"));
  remote.screen.type("é \"<\n");
  remote.screen.adjust(remote.screen.widget(NodeType::slider), 1.26);
  remote.screen.press("⌘⇧R");
  settle();
  remote.screen.keyDown({8, 0x100000}, "c");
  settle();
  EXPECT_EQ(settings().profiles()[0].name, "Rewordé \"<\n");
  EXPECT_EQ(settings().profiles()[0].keyCode, 8);
  EXPECT_EQ(settings().temperature(), 1.3);
  EXPECT_TRUE(remote.screen.shows("1.3"));
  remote.screen.choose(remote.screen.widget(NodeType::tabView), "About");
  settle();
  EXPECT_TRUE(remote.screen.shows("Version 1.0.0"));
}

}  // namespace
}  // namespace tavelle::tests

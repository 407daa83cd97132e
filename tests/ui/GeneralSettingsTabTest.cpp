#include "ui/GeneralSettingsTab.h"

#include "tests/ui/GeneralSettingsTabFixture.h"

namespace tavelle::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

using GeneralSettingsTabTest = GeneralSettingsTabFixture;

TEST_F(GeneralSettingsTabTest, showsItsSectionsInOrder) {
  show<GeneralSettingsTab>();
  EXPECT_EQ(screen->all(NodeType::section).size(), 5);
  EXPECT_THAT(section(0), ElementsAre("Profiles", "Reword", "⌘⇧R", "plus", "minus"));
  EXPECT_THAT(section(1), ElementsAre("Profile Settings", "Name:", "Hotkey:", "⌘⇧R"));
  EXPECT_THAT(section(2), ElementsAre("Prompt", "Reset to Default"));
  EXPECT_THAT(section(3), ElementsAre("Accessibility:", "Granted"));
  EXPECT_THAT(section(4), ElementsAre("Temperature", "0.7"));
}

TEST_F(GeneralSettingsTabTest, listsEveryProfileInStoredOrderWithItsHotkeyInTheSecondaryColour) {
  showWith({profile("B", 15, 768), profile("A"), profile("", 18, 0)});
  EXPECT_THAT(section(0), ElementsAre("Profiles", "B", "⌘⇧R", "A", "None", "Key18", "plus", "minus"));
  EXPECT_EQ(styleOf("None", Attribute::color), "secondary");
  EXPECT_EQ(styleOf("A", Attribute::color), "");
  const auto& list = screen->widget(NodeType::list);
  EXPECT_EQ(*list.attributes.get<double>(Attribute::minimumHeight), 80);
  EXPECT_EQ(list.children[1]->string(Attribute::tag), stored(1).id.uuidString());
}

TEST_F(GeneralSettingsTabTest, selectsTheFirstProfileAsItAppears) {
  showWith({profile("A"), profile("B")});
  EXPECT_EQ(selected(), stored(0).id.uuidString());
  EXPECT_EQ(screen->value("Name:"), "A");
}

TEST_F(GeneralSettingsTabTest, showsNoEditorWithoutProfiles) {
  showWith({});
  EXPECT_EQ(selected(), "");
  EXPECT_EQ(screen->all(NodeType::section).size(), 3);
  EXPECT_FALSE(screen->shows("Name:"));
  EXPECT_FALSE(screen->widget("minus").isEnabled());
}

TEST_F(GeneralSettingsTabTest, showsNoEditorWithNothingSelected) {
  showWith({profile("A"), profile("B")});
  choose(NodeType::list, "");
  EXPECT_FALSE(screen->shows("Profile Settings"));
  EXPECT_FALSE(screen->shows("Prompt"));
  EXPECT_FALSE(screen->widget("minus").isEnabled());
  press("minus");
  EXPECT_EQ(settings().profiles().size(), 2);
}

TEST_F(GeneralSettingsTabTest, editsTheSelectedProfile) {
  showWith({profile("A"), profile("B", 15, 768)});
  select(1);
  EXPECT_EQ(screen->value("Name:"), "B");
  EXPECT_EQ(screen->widget(NodeType::textEditor).string(Attribute::value), "prompt of B");
  enter("Name:", "Bee");
  EXPECT_EQ(stored(1).name, "Bee");
  EXPECT_EQ(stored(0).name, "A");
  EXPECT_THAT(section(0), ElementsAre("Profiles", "A", "None", "Bee", "⌘⇧R", "plus", "minus"));
}

TEST_F(GeneralSettingsTabTest, storesAtEveryKeystroke) {
  showWith({profile("A")});
  screen->focus(screen->widget("Name:"));
  type("bc");
  EXPECT_EQ(stored(0).name, "Abc");
  EXPECT_THAT(platform.defaults.writes, ElementsAre("rewriteProfiles", "rewriteProfiles"));
  screen->focus(screen->widget(NodeType::textEditor));
  type("!");
  EXPECT_EQ(stored(0).systemPrompt, "prompt of A!");
  EXPECT_EQ(platform.defaults.writes.size(), 3);
}

TEST_F(GeneralSettingsTabTest, givesThePromptABodyStyleMonospacedEditorOf80Points) {
  show<GeneralSettingsTab>();
  const auto& editor = screen->widget(NodeType::textEditor);
  EXPECT_EQ(editor.string(Attribute::font), "body");
  EXPECT_TRUE(*editor.attributes.get<bool>(Attribute::monospaced));
  EXPECT_EQ(*editor.attributes.get<double>(Attribute::minimumHeight), 80);
  EXPECT_TRUE(*screen->widget("Reset to Default").attributes.get<bool>(Attribute::small));
}

TEST_F(GeneralSettingsTabTest, restoresTheExactDefaultPromptAndStoresIt) {
  showWith({profile("A"), profile("B")});
  select(1);
  press("Reset to Default");
  EXPECT_EQ(stored(1).systemPrompt, defaultSystemPrompt);
  EXPECT_NE(stored(0).systemPrompt, defaultSystemPrompt);
  EXPECT_EQ(screen->widget(NodeType::textEditor).string(Attribute::value), defaultSystemPrompt);
  EXPECT_THAT(platform.defaults.writes, ElementsAre("rewriteProfiles"));
}

TEST_F(GeneralSettingsTabTest, disablesMinusWithOneProfileWhichCannotBeRemoved) {
  showWith({profile("A")});
  EXPECT_FALSE(screen->widget("minus").isEnabled());
  const auto tab = std::make_shared<GeneralSettingsTab>();
  tab->onAppear();
  tab->removeProfile();
  EXPECT_EQ(settings().profiles().size(), 1);
  EXPECT_THAT(platform.defaults.writes, IsEmpty());
}

TEST_F(GeneralSettingsTabTest, removesNothingWithoutASelection) {
  showWith({profile("A"), profile("B")});
  const auto tab = std::make_shared<GeneralSettingsTab>();
  tab->removeProfile();
  EXPECT_EQ(settings().profiles().size(), 2);
}

TEST_F(GeneralSettingsTabTest, selectsTheRemainingProfileWhenTheSelectedOneOfTwoIsRemoved) {
  showWith({profile("A"), profile("B")});
  select(1);
  press("minus");
  ASSERT_EQ(settings().profiles().size(), 1);
  EXPECT_EQ(stored(0).name, "A");
  EXPECT_EQ(selected(), stored(0).id.uuidString());
  EXPECT_EQ(screen->value("Name:"), "A");
  EXPECT_FALSE(screen->widget("minus").isEnabled());
  EXPECT_THAT(platform.defaults.writes, ElementsAre("rewriteProfiles"));
}

TEST_F(GeneralSettingsTabTest, selectsTheFirstOfThoseThatAreLeftInTheirOrder) {
  showWith({profile("A"), profile("B"), profile("C")});
  press("minus");
  EXPECT_THAT(section(0), ElementsAre("Profiles", "B", "None", "C", "None", "plus", "minus"));
  EXPECT_EQ(selected(), stored(0).id.uuidString());
}

TEST_F(GeneralSettingsTabTest, removesEveryProfileThatHasTheSelectedIdentity) {
  const auto twin = profile("A");
  showWith({twin, twin});
  press("minus");
  EXPECT_THAT(settings().profiles(), IsEmpty());
  EXPECT_EQ(selected(), "");
  EXPECT_FALSE(screen->shows("Name:"));
  EXPECT_FALSE(screen->widget("minus").isEnabled());
  press("plus");
  EXPECT_EQ(screen->value("Name:"), "New Profile");
}

TEST_F(GeneralSettingsTabTest, editsTheFirstProfileThatHasTheSelectedIdentity) {
  auto twin = profile("A");
  showWith({twin, twin});
  enter("Name:", "B");
  EXPECT_EQ(stored(0).name, "B");
  EXPECT_EQ(stored(1).name, "A");
}

TEST_F(GeneralSettingsTabTest, showsNoEditorForAProfileThatIsGone) {
  showWith({profile("A"), profile("B")});
  press("None");
  settings().setProfiles({profile("C"), profile("D")});
  settle();
  EXPECT_FALSE(screen->shows("Profile Settings"));
  platform.defaults.writes.clear();
  keyDown(15, command, "r");
  EXPECT_THAT(platform.defaults.writes, IsEmpty()) << "there is nothing to record it for";
  press("minus");
  EXPECT_EQ(settings().profiles().size(), 2) << "nothing has that identity";
  EXPECT_EQ(screen->value("Name:"), "C");
  EXPECT_EQ(hotkeyTitle(), "Press keys...");
}

TEST_F(GeneralSettingsTabTest, addsAProfileWithoutAHotkeyAtTheEndAndSelectsIt) {
  showWith({profile("A", 15, 768)});
  press("plus");
  ASSERT_EQ(settings().profiles().size(), 2);
  EXPECT_EQ(stored(1).name, "New Profile");
  EXPECT_EQ(stored(1).keyCode, 0);
  EXPECT_EQ(stored(1).modifiers, 0);
  EXPECT_EQ(stored(1).systemPrompt, defaultSystemPrompt);
  EXPECT_NE(stored(1).id, stored(0).id);
  EXPECT_EQ(selected(), stored(1).id.uuidString());
  EXPECT_THAT(section(1), ElementsAre("Profile Settings", "Name:", "Hotkey:", "None")) << "and no warning";
  EXPECT_TRUE(screen->widget("minus").isEnabled());
  EXPECT_THAT(platform.defaults.writes, ElementsAre("rewriteProfiles"));
}

TEST_F(GeneralSettingsTabTest, raisesNoConflictBetweenTwoNewProfiles) {
  showWith({profile("A")});
  press("plus");
  press("plus");
  EXPECT_THAT(section(1), ElementsAre("Profile Settings", "Name:", "Hotkey:", "None"));
}

TEST_F(GeneralSettingsTabTest, showsWhereAccessIsGrantedInGreen) {
  show<GeneralSettingsTab>();
  EXPECT_EQ(styleOf("Granted", Attribute::color), "green");
  EXPECT_FALSE(screen->shows("Grant Access"));
}

TEST_F(GeneralSettingsTabTest, asksForAccessThatIsMissing) {
  platform.access.trusted = false;
  show<GeneralSettingsTab>();
  EXPECT_THAT(section(3), ElementsAre("Accessibility:", "Not Granted", "Grant Access"));
  EXPECT_EQ(styleOf("Not Granted", Attribute::color), "red");
  press("Grant Access");
  EXPECT_THAT(platform.access.prompts, ElementsAre(ElementsAre(Pair("AXTrustedCheckOptionPrompt", true))));
}

TEST_F(GeneralSettingsTabTest, doesNotAskForAccessThatWasGrantedInTheMeantime) {
  platform.access.trusted = false;
  show<GeneralSettingsTab>();
  platform.access.trusted = true;
  press("Grant Access");
  EXPECT_THAT(platform.access.prompts, IsEmpty());
}

TEST_F(GeneralSettingsTabTest, looksForAccessEachTimeItIsDrawn) {
  platform.access.trusted = false;
  show<GeneralSettingsTab>();
  platform.access.trusted = true;
  settings().setTemperature(1);
  settle();
  EXPECT_TRUE(screen->shows("Granted"));
}

TEST_F(GeneralSettingsTabTest, setsTheTemperatureInStepsOfATenthAndShowsOneDecimal) {
  show<GeneralSettingsTab>();
  EXPECT_EQ(*slider().attributes.get<double>(Attribute::minimum), 0.0);
  EXPECT_EQ(*slider().attributes.get<double>(Attribute::maximum), 2.0);
  EXPECT_EQ(*slider().attributes.get<double>(Attribute::step), 0.1);
  for (int tenths = 0; tenths <= 20; ++tenths) {
    screen->adjust(slider(), tenths * 0.1 + 0.04);
    settle();
    EXPECT_EQ(settings().temperature(), tenths / 10.0);
    const auto shown = std::to_string(tenths / 10) + "." + std::to_string(tenths % 10);
    EXPECT_THAT(section(4), ElementsAre("Temperature", shown));
    EXPECT_TRUE(*screen->widget(shown).attributes.get<bool>(Attribute::monospacedDigits));
    EXPECT_EQ(*screen->widget(shown).attributes.get<double>(Attribute::width), 30);
  }
  for (const auto beyond : {-1.0, 3.0}) {
    screen->adjust(slider(), beyond);
    settle();
    EXPECT_EQ(settings().temperature(), beyond < 0 ? 0.0 : 2.0);
  }
}

TEST_F(GeneralSettingsTabTest, doesNotGiveWhatIsTypedForOneProfileToAnother) {
  showWith({profile("A"), profile("B")});
  const auto field = screen->widget("Name:").node;
  select(1);
  reconciler->dispatch({field, 100, view::Edited{"Ax"}});
  EXPECT_EQ(stored(0).name, "A");
  EXPECT_EQ(stored(1).name, "B");
}

TEST_F(GeneralSettingsTabTest, removesTheProfileWhoseNameIsBeingTyped) {
  showWith({profile("A"), profile("B")});
  screen->focus(screen->widget("Name:"));
  const auto field = screen->widget("Name:").node;
  screen->type("x");
  screen->press("minus");
  reconciler->dispatch({field, 100, view::Edited{"Axy"}});
  settle();
  ASSERT_EQ(settings().profiles().size(), 1);
  EXPECT_EQ(stored(0).name, "B");
  EXPECT_EQ(screen->focused(), "");
}

TEST_F(GeneralSettingsTabTest, keepsTheCursorInTheNameWhileEveryKeystrokeIsStored) {
  showWith({profile("Ad"), profile("B")});
  screen->focus(screen->widget("Name:"));
  screen->moveCursor(1);
  type("b");
  type("c");
  EXPECT_EQ(stored(0).name, "Abcd");
  EXPECT_EQ(screen->widget("Name:").cursor, 3);
  EXPECT_EQ(screen->focused(), "Name:");
}

TEST_F(GeneralSettingsTabTest, sendsOneChangeForOneKeystrokeAmongAHundredProfiles) {
  std::vector<RewriteProfile> profiles;
  for (int number = 0; number < 100; ++number) profiles.push_back(profile(std::to_string(number)));
  showWith(std::move(profiles));
  screen->focus(screen->widget("Name:"));
  screen->takeLog();
  type("x");
  EXPECT_THAT(screen->takeLog(), ElementsAre(testing::EndsWith("text=\"0x\""))) << "its row";
}

TEST_F(GeneralSettingsTabTest, takesNamesOfAnyKind) {
  showWith({profile("A")});
  for (const auto* name : {"👩‍👩‍👧 é", "שלום", "<b>&amp;</b>", "two\nlines", ""}) {
    enter("Name:", name);
    EXPECT_EQ(stored(0).name, name);
    EXPECT_EQ(screen->value("Name:"), name);
  }
}

TEST_F(GeneralSettingsTabTest, takesAPromptOfAMegabyte) {
  showWith({profile("A")});
  const std::string prompt(1 << 20, 'x');
  screen->replaceText(screen->widget(NodeType::textEditor), prompt);
  settle();
  EXPECT_EQ(stored(0).systemPrompt, prompt);
}

TEST_F(GeneralSettingsTabTest, startsAfreshEachTimeItIsMade) {
  showWith({profile("A"), profile("B")});
  select(1);
  press("None");
  show<GeneralSettingsTab>();
  EXPECT_EQ(selected(), stored(0).id.uuidString());
  EXPECT_EQ(hotkeyTitle(), "None");
}

}  // namespace
}  // namespace tavelle::tests

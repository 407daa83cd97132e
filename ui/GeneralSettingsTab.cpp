#include "ui/GeneralSettingsTab.h"

#include "platform/FatalError.h"
#include "platform/Platform.h"
#include "ui/HotkeyString.h"
#include "ui/OnKeyDownModifier.h"
#include "ui/SettingsBinding.h"
#include "view/Nodes.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace tavelle {

using namespace view;

namespace {

std::optional<UUID> firstID(const std::vector<RewriteProfile>& profiles) {
  return profiles.empty() ? std::nullopt : std::optional{profiles.front().id};
}

std::string withOneDecimal(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f", value);
  return text;
}

}  // namespace

GeneralSettingsTab::GeneralSettingsTab() {
  observe(settings_.objectWillChange());
}

void GeneralSettingsTab::onAppear() {
  if (!selectedProfileID_.get()) selectedProfileID_.set(firstID(settings_.profiles()));
}

Node GeneralSettingsTab::body() {
  const auto selected = selectedIndex();
  std::vector<Node> editor;
  if (selected) {
    // The fields belong to their profile: what is typed into one never reaches another that took its place.
    const auto id = settings_.profiles()[*selected].id.uuidString();
    editor.push_back(profileSettingsSection(*selected).keyed(id));
    editor.push_back(promptSection(*selected).keyed(id));
  }
  const OnKeyDownModifier onKeyDown{isRecordingHotkey_.get(), [this](const KeyDown& event) { recordHotkey(event); }};
  return onKeyDown.body(form(profilesSection(), std::move(editor), accessibilitySection(), temperatureSection()));
}

Node GeneralSettingsTab::profilesSection() {
  std::vector<Node> rows;
  for (const auto& profile : settings_.profiles()) {
    rows.push_back(row(profile.id.uuidString(), text(profile.name),
                       text(hotkeyString(profile.keyCode, profile.modifiers)).color(Color::secondary)));
  }
  const Binding<std::string> selection{
      [this] { return selectedProfileID_.get() ? selectedProfileID_.get()->uuidString() : ""; },
      [this](const std::string& tag) { selectedProfileID_.set(UUID::parse(tag)); }};

  return section("Profiles", list(selection, std::move(rows)).labeled("Profiles").minimumHeight(80),
                 horizontalStack(symbolButton("plus", "Add Profile", [this] { addProfile(); }),
                                 symbolButton("minus", "Remove Profile", [this] {
                                   removeProfile();
                                 }).disabled(!canRemoveProfile())));
}

Node GeneralSettingsTab::profileSettingsSection(std::size_t index) {
  const auto& profile = settings_.profiles()[index];
  const auto title = isRecordingHotkey_.get() ? "Press keys..." : hotkeyString(profile.keyCode, profile.modifiers);
  const auto warning = duplicateHotkeyWarning(profile, settings_.profiles());

  return section("Profile Settings", textField("Name:", binding(index, &RewriteProfile::name)).mnemonic("N"),
                 labeledContent("Hotkey:", button(title, [this] { isRecordingHotkey_.set(true); })).mnemonic("H"),
                 warning ? std::optional{text(*warning).font(Font::caption).color(Color::orange)} : std::nullopt);
}

Node GeneralSettingsTab::promptSection(std::size_t index) {
  const auto prompt = binding(index, &RewriteProfile::systemPrompt);
  return section(
      "Prompt", textEditor(prompt).labeled("Prompt").font(Font::body).monospaced().minimumHeight(80),
      button("Reset to Default", [prompt] { prompt.set(std::string{defaultSystemPrompt}); }).mnemonic("R").small());
}

Node GeneralSettingsTab::accessibilitySection() {
  if (Platform::current().accessibility().isProcessTrusted()) {
    return section("", labeledContent("Accessibility:", text("Granted").color(Color::green)));
  }
  return section("", labeledContent("Accessibility:", text("Not Granted").color(Color::red),
                                    button("Grant Access", [] { grantAccess(); }).mnemonic("C")));
}

Node GeneralSettingsTab::temperatureSection() {
  const auto temperature = settingsBinding(settings_, &SettingsManager::temperature, &SettingsManager::setTemperature);
  return section("Temperature",
                 horizontalStack(slider(temperature, 0.0, 2.0, 10).labeled("Temperature"),
                                 text(withOneDecimal(settings_.temperature())).monospacedDigits().width(30)));
}

void GeneralSettingsTab::addProfile() {
  auto profiles = settings_.profiles();
  const auto id = UUID::random();
  profiles.push_back({.id = id, .name = "New Profile", .systemPrompt = std::string{defaultSystemPrompt}});
  settings_.setProfiles(std::move(profiles));
  selectedProfileID_.set(id);
}

bool GeneralSettingsTab::canRemoveProfile() const {
  return selectedProfileID_.get() && settings_.profiles().size() >= 2;
}

void GeneralSettingsTab::removeProfile() {
  if (!canRemoveProfile()) return;
  auto profiles = settings_.profiles();
  std::erase_if(profiles, [this](const RewriteProfile& profile) { return profile.id == selectedProfileID_.get(); });
  settings_.setProfiles(std::move(profiles));
  selectedProfileID_.set(firstID(settings_.profiles()));
}

std::optional<std::size_t> GeneralSettingsTab::selectedIndex() const {
  const auto& profiles = settings_.profiles();
  const auto found = std::find_if(profiles.begin(), profiles.end(), [this](const RewriteProfile& profile) {
    return profile.id == selectedProfileID_.get();
  });
  if (found == profiles.end()) return std::nullopt;
  return static_cast<std::size_t>(found - profiles.begin());
}

// Through the place that the profile has now: it must be asked for again whenever the list changes.
Binding<std::string> GeneralSettingsTab::binding(std::size_t index, std::string RewriteProfile::*field) {
  return {[this, index, field] {
            requireProfile(index);
            return settings_.profiles()[index].*field;
          },
          [this, index, field](std::string value) {
            change(index, [&](RewriteProfile& profile) { profile.*field = std::move(value); });
          }};
}

void GeneralSettingsTab::requireProfile(std::size_t index) const {
  if (index >= settings_.profiles().size()) fatalError("a field of the settings is bound to a profile that is gone");
}

// One change, one store.
void GeneralSettingsTab::change(std::size_t index, const std::function<void(RewriteProfile&)>& edit) {
  requireProfile(index);
  auto profiles = settings_.profiles();
  edit(profiles[index]);
  settings_.setProfiles(std::move(profiles));
}

// Any key will do, with or without modifiers; a conflict is shown, and is the person's to solve.
void GeneralSettingsTab::recordHotkey(const KeyDown& event) {
  const auto index = selectedIndex();
  if (!index) return;
  change(*index, [&event](RewriteProfile& profile) { profile.keyCode = event.keyCode; });
  change(*index, [&event](RewriteProfile& profile) { profile.modifiers = carbonModifiers(event.modifierFlags); });
  isRecordingHotkey_.set(false);
}

// Asked again: the person may have granted it since this was drawn, and then needs no prompt.
void GeneralSettingsTab::grantAccess() {
  auto& accessibility = Platform::current().accessibility();
  if (accessibility.isProcessTrusted()) return;
  accessibility.isProcessTrustedWithOptions({{trustedCheckOptionPrompt, true}});
}

}  // namespace tavelle

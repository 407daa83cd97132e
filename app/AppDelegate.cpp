#include "app/AppDelegate.h"

#include "account/TavelleAccountManager.h"
#include "app/SettingsWindow.h"
#include "hotkeys/HotkeyManager.h"
#include "platform/Platform.h"
#include "platform/URL.h"
#include "settings/SettingsManager.h"

#include <functional>

namespace tavelle {

AppDelegate::AppDelegate(Platform& platform)
    : platform_(platform),
      notifications_(platform.userNotificationCenter()),
      clipboardManager_(platform.generalPasteboard()) {}

void AppDelegate::applicationWillFinishLaunching() {
  platform_.sharedAppleEventManager().setEventHandler(
      [weak = weak_from_this()](const AppleEvent& event, AppleEvent& reply) {
        if (const auto self = weak.lock()) self->handleURLEvent(event, reply);
      },
      kInternetEventClass, kAEGetURL);
}

void AppDelegate::handleURLEvent(const AppleEvent& event, AppleEvent&) {
  const AppleEventDescriptor* const link = event.paramDescriptorForKeyword(keyDirectObject);
  if (!link || !link->stringValue) return;
  const auto url = URL::parse(*link->stringValue);
  if (!url || !url->absoluteString().starts_with("tavelle:")) return;  // in lower case, as it is registered
  if (url->host() == "auth") TavelleAccountManager::shared().handleAuthCallback(*url);
}

void AppDelegate::applicationDidFinishLaunching() {
  setupMenuBar();
  registerHotkeys();
  if (!platform_.accessibility().isProcessTrusted()) askForAccessibility();
  platform_.userNotificationCenter().requestAuthorization(AuthorizationOptions::alert | AuthorizationOptions::sound,
                                                          [](bool) {});
  // Every later list; the present one is registered already.
  cancellables_.push_back(SettingsManager::shared().publishedProfiles().subscribeDroppingFirst(
      [weak = weak_from_this()](const std::vector<RewriteProfile>& profiles) {
        if (!weak.expired()) HotkeyManager::shared().registerAll(profiles);
      }));
}

void AppDelegate::setupMenuBar() {
  statusItem_ = platform_.systemStatusBar().statusItemWithLength(squareStatusItemLength);
  if (statusItem_->hasButton()) {
    if (const auto image = platform_.mainBundle().imageNamed("MenuBarIcon")) {
      image->setTemplate(true);
      statusItem_->setButtonImage(image);
    }
  }
  statusItem_->setMenu(menu());
}

Menu AppDelegate::menu() {
  const auto calling = [weak = weak_from_this()](void (AppDelegate::*action)()) {
    return [weak, action] {
      if (const auto self = weak.lock()) std::invoke(action, *self);
    };
  };
  return {
      {.title = "Reword Selection", .action = calling(&AppDelegate::rewordAction), .keyEquivalent = ""},
      MenuItem::separator(),
      {.title = "Settings...", .action = calling(&AppDelegate::openSettings), .keyEquivalent = ","},
      MenuItem::separator(),
      {.title = "Quit Tavelle", .action = calling(&AppDelegate::quitApp), .keyEquivalent = "q"},
  };
}

void AppDelegate::registerHotkeys() {
  HotkeyManager& hotkeys = HotkeyManager::shared();
  hotkeys.onProfileHotkeyPressed = [weak = weak_from_this()](UUID profileID) {
    if (const auto self = weak.lock()) self->performReword(profileID);
  };
  hotkeys.registerAll(SettingsManager::shared().profiles());
}

void AppDelegate::askForAccessibility() {
  platform_.accessibility().isProcessTrustedWithOptions({{trustedCheckOptionPrompt, true}});
}

// Started again by the person, who may see no menu bar: there is nothing else to come back to.
void AppDelegate::applicationShouldHandleReopen() {
  openSettings();
}

void AppDelegate::openSettings() {
  if (!settingsWindow_) settingsWindow_ = makeSettingsWindow(platform_);
  settingsWindow_->makeKeyAndOrderFront();
  platform_.application().activateIgnoringOtherApps(true);
}

void AppDelegate::quitApp() {
  platform_.application().terminate();
}

}  // namespace tavelle

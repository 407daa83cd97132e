#include "app/AppDelegate.h"

#include "llm/LLMError.h"
#include "llm/LLMService.h"
#include "platform/Platform.h"
#include "settings/SettingsManager.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <optional>
#include <utility>

namespace tavelle {
namespace {

using namespace std::chrono_literals;

// How long an application gets to answer a key stroke.
constexpr auto keystrokeWait = 150ms;

std::string bodyForError(std::exception_ptr error) {
  try {
    std::rethrow_exception(error);
  } catch (const LLMError& failure) {
    if (failure.kind() == LLMError::Case::authRequired) return "Please sign in to your Tavelle account in Settings.";
    return "Error: " + failure.errorDescription();
  } catch (const std::exception& failure) {
    return "Error: " + localizedDescription(failure);
  } catch (...) {
    return "Error: The operation couldn’t be completed.";
  }
}

}  // namespace

void AppDelegate::rewordAction() {
  const auto& profiles = SettingsManager::shared().profiles();
  if (!profiles.empty()) performReword(profiles.front().id);
}

void AppDelegate::performReword(UUID profileID) {
  if (isProcessing_) return;

  if (!platform_.accessibility().isProcessTrusted()) {
    notify("Accessibility permission required. Please grant access in System Settings.");
    // Asked again: the person may have granted it in the meantime, and then needs no prompt.
    if (!platform_.accessibility().isProcessTrusted()) askForAccessibility();
    return;
  }

  const auto& profiles = SettingsManager::shared().profiles();
  const auto profile = std::find_if(profiles.begin(), profiles.end(),
                                    [profileID](const RewriteProfile& candidate) { return candidate.id == profileID; });
  if (profile == profiles.end()) return;

  isProcessing_ = true;
  platform_.mainActor().start(reword(shared_from_this(), *profile));
}

Task<void> AppDelegate::reword(std::shared_ptr<AppDelegate> self, RewriteProfile profile) {
  co_await self->clipboardManager_.save();
  if (self->isTerminating_) co_return;
  self->platform_.generalPasteboard().clearContents();
  self->postKeystroke(kVK_ANSI_C);

  std::exception_ptr error;
  bool hadText = false;
  try {
    hadText = co_await self->replaceSelection(std::move(profile));
  } catch (...) {
    error = std::current_exception();
  }

  if (self->isTerminating_) co_return;
  self->clipboardManager_.restore();
  if (!error && hadText) {
    self->notify("Done!");
    self->isProcessing_ = false;
  } else if (!error) {
    self->isProcessing_ = false;
    self->notify("No text selected.");
  } else {
    self->notify(bodyForError(error));
    self->isProcessing_ = false;
  }
}

// From the copy posted to the paste taken: what may throw. False where no text was selected.
Task<bool> AppDelegate::replaceSelection(RewriteProfile profile) {
  Pasteboard& pasteboard = platform_.generalPasteboard();
  co_await platform_.mainActor().sleep(keystrokeWait);
  if (isTerminating_) co_return false;

  std::optional<std::string> text = co_await pasteboard.stringForType(pasteboardTypeString);
  if (isTerminating_ || !text || text->empty()) co_return false;
  notify("Rewriting...");

  const SettingsManager& settings = SettingsManager::shared();
  std::string answer =
      co_await LLMService::shared().reword(*std::move(text), settings.provider(), settings.model(), settings.baseURL(),
                                           settings.apiKey(), profile.systemPrompt, settings.temperature());
  if (isTerminating_) co_return false;
  pasteboard.clearContents();
  pasteboard.setString(std::move(answer), pasteboardTypeString);
  postKeystroke(kVK_ANSI_V);
  co_await platform_.mainActor().sleep(keystrokeWait);
  co_return true;
}

void AppDelegate::applicationWillTerminate() {
  isTerminating_ = true;
  clipboardManager_.restore();
}

void AppDelegate::postKeystroke(std::uint16_t keyCode) {
  QuartzEvents& events = platform_.quartzEvents();
  const auto source = events.createEventSource(EventSourceStateID::hidSystemState);
  const auto keyDown = events.createKeyboardEvent(source.get(), keyCode, true);
  const auto keyUp = events.createKeyboardEvent(source.get(), keyCode, false);
  if (!keyDown || !keyUp) return;  // the run goes on, and finds no text

  events.setFlags(*keyDown, eventFlagMaskCommand);
  events.setFlags(*keyUp, eventFlagMaskCommand);
  events.post(EventTapLocation::hidEventTap, *keyDown);
  events.post(EventTapLocation::hidEventTap, *keyUp);
}

void AppDelegate::notify(std::string body) {
  notifications_.send("Tavelle", std::move(body));
}

}  // namespace tavelle

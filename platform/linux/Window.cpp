#include "platform/linux/Window.h"

#include "platform/linux/Programs.h"
#include "view/wire/BatchLine.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace tavelle {

LinuxWindow::LinuxWindow(MainActor& actor, Rect contentRect, Drawing drawing, WatchPresses watchPresses, Tell tell)
    : contentRect_(contentRect),
      drawing_(std::move(drawing)),
      watchPresses_(std::move(watchPresses)),
      tell_(std::move(tell)),
      unanswered_(
          actor, [this] { giveUp("The settings window did not answer. Open it again.", "no answer in time"); },
          drawing_.clock),
      rested_(
          actor, [this] { endRenderer(); }, drawing_.clock) {}

LinuxWindow::~LinuxWindow() {
  endRenderer();
}

std::filesystem::path LinuxWindow::standardProgram() {
  return programBeside("tavelle-settings");
}

void LinuxWindow::setContentView(std::shared_ptr<view::Content> content) {
  endRenderer();
  content_ = std::move(content);
}

void LinuxWindow::makeKeyAndOrderFront() {
  rested_.clear();
  if (!renderer_ && !startRenderer()) return;
  renderer_->send(encodeLine(Present{++questions_, title_, contentRect_.width, contentRect_.height, place_}));
  expectAnswer();
}

bool LinuxWindow::startRenderer() {
  try {
    renderer_ = std::make_unique<RendererProcess>(
        drawing_.program, LineSocket::Handlers{[this](const std::string& line) { receive(line); },
                                               [this](const std::string& why) {
                                                 giveUp("The settings window has ended. Open it again.", why);
                                               }});
  } catch (const RendererProcess::CannotStart& error) {
    tell_("The settings window could not be opened.", error.what());
    return false;
  }
  if (content_) content_->attach(this);
  return true;
}

void LinuxWindow::endRenderer() {
  presses_.cancel();
  unanswered_.clear();
  rested_.clear();
  if (content_ && renderer_) content_->attach(nullptr);
  renderer_.reset();
}

void LinuxWindow::giveUp(const std::string& trouble, const std::string& cause) {
  endRenderer();
  tell_(trouble, cause);
}

void LinuxWindow::apply(const view::Batch& batch) {
  renderer_->send(view::encodeBatch(batch));
}

void LinuxWindow::receive(const std::string& line) {
  std::visit([this](const auto& report) { hear(report); }, decodeReport(line));
}

void LinuxWindow::hear(const view::Event& event) {
  if (content_) content_->dispatch(event);
}

void LinuxWindow::hear(const Presented& presented) {
  if (!hasAnswered(presented.number)) return;
  rested_.clear();  // it may have been closed just before the request came to it
  presses_ = watchPresses_([this] { pressed(); });
}

void LinuxWindow::hear(const Pong& pong) {
  hasAnswered(pong.number);
}

// Whoever asks again and again does not put it off.
void LinuxWindow::expectAnswer() {
  if (!unanswered_.isSet()) unanswered_.set(drawing_.patience);
}

// All of them. A renderer may answer the later question first: it draws before it says that the window is shown.
bool LinuxWindow::hasAnswered(std::uint64_t number) {
  unanswered_.clear();
  answered_ = std::max(answered_, number);
  if (answered_ == questions_) return true;
  expectAnswer();
  return false;
}

// The person may have pressed in vain.
void LinuxWindow::pressed() {
  if (unanswered_.isSet()) return;
  renderer_->send(encodeLine(Ping{++questions_}));
  expectAnswer();
}

void LinuxWindow::hear(const Closed& closed) {
  presses_.cancel();
  place_ = closed.place;
  rested_.set(drawing_.restAfterClosing);
}

}  // namespace tavelle

#pragma once

#include "observation/Subscription.h"
#include "platform/Window.h"
#include "platform/linux/Deadline.h"
#include "platform/linux/RendererProcess.h"
#include "platform/linux/WindowLine.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tavelle {

// A window that another program draws: started when the window is first shown, ended when it has been closed for a
// while or does not answer, and started again when the window is next shown. All state is on this side, so that the
// person sees one window.
//
// Whether it still answers is asked when the person might wonder: when the window is to be shown, and when a button of
// the pointer is pressed while it is open.
class LinuxWindow : public Window, private view::Renderer {
 public:
  struct Drawing {
    std::filesystem::path program;
    std::chrono::milliseconds patience{10'000};           // from asking something until it is answered
    std::chrono::milliseconds restAfterClosing{300'000};  // until the program is ended
    Deadline::Clock clock = std::chrono::steady_clock::now;
  };
  // Trouble with the renderer: what the person can make of it, and what somebody who looks for the cause wants to know.
  using Tell = std::function<void(const std::string& trouble, const std::string& cause)>;
  // Has `onPress` called at each press of a pointer's button, wherever that is, for as long as the token lives.
  using WatchPresses = std::function<Subscription(std::function<void()> onPress)>;

  LinuxWindow(MainActor& actor, Rect contentRect, Drawing drawing, WatchPresses watchPresses, Tell tell);
  ~LinuxWindow() override;

  // The program beside this process's own.
  static std::filesystem::path standardProgram();

  void setTitle(std::string title) override { title_ = std::move(title); }
  void setContentView(std::shared_ptr<view::Content> content) override;
  void setReleasedWhenClosed(bool) override {}  // it lives as long as its owner wants
  void center() override { place_.reset(); }
  void makeKeyAndOrderFront() override;

 private:
  void apply(const view::Batch& batch) override;
  bool startRenderer();
  void endRenderer();
  void giveUp(const std::string& trouble, const std::string& cause);
  void receive(const std::string& line);
  void hear(const view::Event& event);
  void hear(const Presented& presented);
  void hear(const Pong& pong);
  void hear(const Closed& closed);
  void expectAnswer();
  bool hasAnswered(std::uint64_t number);
  void pressed();

  const Rect contentRect_;
  const Drawing drawing_;
  const WatchPresses watchPresses_;
  const Tell tell_;
  std::string title_;
  std::shared_ptr<view::Content> content_;
  std::optional<WindowPlace> place_;  // none: in the middle
  std::uint64_t questions_ = 0;       // that a renderer was asked
  std::uint64_t answered_ = 0;        // the last of them that it answered
  std::unique_ptr<RendererProcess> renderer_;
  Deadline unanswered_;
  Deadline rested_;
  Subscription presses_;  // while it is open
};

}  // namespace tavelle

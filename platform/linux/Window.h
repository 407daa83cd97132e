#pragma once

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
class LinuxWindow : public Window, private view::Renderer {
 public:
  struct Drawing {
    std::filesystem::path program;
    std::chrono::milliseconds patience{10'000};           // from asking for the window until it is drawn
    std::chrono::milliseconds restAfterClosing{300'000};  // until the program is ended
  };
  // Trouble with the renderer: what the person can make of it, and what somebody who looks for the cause wants to know.
  using Tell = std::function<void(const std::string& trouble, const std::string& cause)>;

  LinuxWindow(MainActor& actor, Rect contentRect, Drawing drawing, Tell tell);
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
  void hear(const Closed& closed);

  const Rect contentRect_;
  const Drawing drawing_;
  const Tell tell_;
  std::string title_;
  std::shared_ptr<view::Content> content_;
  std::optional<WindowPlace> place_;  // none: in the middle
  std::uint64_t presents_ = 0;
  std::unique_ptr<RendererProcess> renderer_;
  Deadline unanswered_;
  Deadline rested_;
};

}  // namespace tavelle

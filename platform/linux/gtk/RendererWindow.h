#pragma once

#include "platform/linux/WindowLine.h"
#include "platform/linux/gtk/GtkRenderer.h"
#include "platform/linux/gtk/KeyMonitors.h"

#include <functional>
#include <optional>
#include <string>

namespace tavelle::gtk {

// The window: a header bar, and the content below it. It does what the lines that come in say, and says in lines what
// the person does.
class RendererWindow {
 public:
  using Send = std::function<void(const std::string& line)>;

  explicit RendererWindow(Send send);
  ~RendererWindow();
  RendererWindow(const RendererWindow&) = delete;
  RendererWindow& operator=(const RendererWindow&) = delete;

  // Throws view::WireError.
  void receive(const std::string& line);

 private:
  static gboolean onCloseRequest(GtkWindow*, gpointer self);
  static void onPainted(GdkFrameClock* clock, gpointer self);

  void perform(const view::Batch& batch) { renderer_.apply(batch); }
  void perform(const Present& present);
  void perform(const Ping& ping);
  void addShortcuts();
  void painted();
  void answer();
  void close();

  const Send send_;
  GtkWindow* window_ = GTK_WINDOW(adw_window_new());
  GtkBox* box_ = GTK_BOX(gtk_box_new(GTK_ORIENTATION_VERTICAL, 0));
  AdwHeaderBar* headerBar_ = ADW_HEADER_BAR(adw_header_bar_new());
  AdwBin* content_ = ADW_BIN(adw_bin_new());
  KeyMonitors monitors_;
  GtkRenderer renderer_;
  std::optional<Present> presenting_;  // the last request, until the window is drawn
};

}  // namespace tavelle::gtk

#include "platform/linux/gtk/RendererWindow.h"

#include "platform/linux/gtk/X11Place.h"
#include "view/wire/EventLine.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <variant>

namespace tavelle::gtk {
namespace {

// On the side where the desktop has it.
std::string onlyCloseButton() {
  char* layout = nullptr;
  g_object_get(gtk_settings_get_default(), "gtk-decoration-layout", &layout, nullptr);
  const GPtr<> owner{layout};
  const std::string_view sides = layout ? layout : "";
  return sides.find("close") < sides.find(':') ? "close:" : ":close";
}

// How much larger than usual the person has texts. Where a dense screen is not scaled as a whole, that is all that
// tells.
double textScale() {
  constexpr double usual = 96.0 * 1024;
  int resolution = 0;
  g_object_get(gtk_settings_get_default(), "gtk-xft-dpi", &resolution, nullptr);
  return resolution > 0 ? resolution / usual : 1;
}

GdkRectangle firstMonitor() {
  GdkRectangle area{};
  auto* const monitors = gdk_display_get_monitors(gdk_display_get_default());
  const GObjectPtr<GdkMonitor> monitor{GDK_MONITOR(g_list_model_get_item(monitors, 0))};
  if (monitor) gdk_monitor_get_geometry(monitor.get(), &area);
  return area;
}

// In proportion to its texts, as long as the window finds room on the screen with its header bar and a panel.
void setContentSize(GtkWidget* content, double width, double height) {
  constexpr int bars = 120;
  const auto screen = firstMonitor();
  const auto scale = textScale();
  gtk_widget_set_size_request(
      content, static_cast<int>(std::clamp<double>(width * scale, width, std::max<double>(width, screen.width))),
      static_cast<int>(std::clamp<double>(height * scale, height, std::max<double>(height, screen.height - bars))));
}

}  // namespace

// The monitors come last of the window's controllers: the newest is asked first.
RendererWindow::RendererWindow(Send send)
    : send_(std::move(send)),
      monitors_((addShortcuts(), GTK_WIDGET(window_))),
      renderer_(
          {headerBar_, monitors_}, [this](GtkWidget* root) { adw_bin_set_child(content_, root); },
          [this](const view::Event& event) { send_(view::encodeEvent(event)); }) {
  gtk_window_set_resizable(window_, false);
  adw_header_bar_set_decoration_layout(headerBar_, onlyCloseButton().c_str());
  gtk_window_set_icon_name(window_, "app.tavelle.Tavelle");
  gtk_box_append(box_, GTK_WIDGET(headerBar_));
  gtk_box_append(box_, GTK_WIDGET(content_));
  adw_window_set_content(ADW_WINDOW(window_), GTK_WIDGET(box_));
  g_signal_connect(window_, "close-request", G_CALLBACK(onCloseRequest), this);
}

RendererWindow::~RendererWindow() {
  g_signal_handlers_disconnect_by_data(window_, this);
}

void RendererWindow::receive(const std::string& line) {
  std::visit([this](const auto& order) { perform(order); }, decodeOrder(line));
}

void RendererWindow::perform(const Present& present) {
  gtk_window_set_title(window_, present.title.c_str());
  setContentSize(GTK_WIDGET(content_), present.width, present.height);
  const bool isDrawn = gtk_widget_get_mapped(GTK_WIDGET(window_)) && !presenting_;
  presenting_ = present;
  gtk_window_present(window_);
  if (isDrawn) return answer();
  g_signal_connect(gtk_widget_get_frame_clock(GTK_WIDGET(window_)), "after-paint", G_CALLBACK(onPainted), this);
}

void RendererWindow::perform(const Ping& ping) {
  renderer_.sendEdit();
  send_(encodeLine(Pong{ping.number}));
}

void RendererWindow::onPainted(GdkFrameClock* clock, gpointer self) {
  g_signal_handlers_disconnect_by_data(clock, self);
  static_cast<RendererWindow*>(self)->painted();
}

// Only now it is known how large it is, with the shadow that some desktops have it draw.
void RendererWindow::painted() {
  if (presenting_) moveTo(window_, presenting_->place);
  answer();
}

void RendererWindow::answer() {
  if (const auto presented = std::exchange(presenting_, std::nullopt)) send_(encodeLine(Presented{presented->number}));
}

gboolean RendererWindow::onCloseRequest(GtkWindow*, gpointer self) {
  static_cast<RendererWindow*>(self)->close();
  return true;
}

void RendererWindow::close() {
  const Closed closed{placeOf(window_)};
  gtk_widget_set_visible(GTK_WIDGET(window_), false);
  answer();  // it has been shown, be it undrawn
  renderer_.sendEdit();
  send_(encodeLine(closed));
}

void RendererWindow::addShortcuts() {
  auto* const controller = gtk_shortcut_controller_new();
  gtk_shortcut_controller_add_shortcut(
      GTK_SHORTCUT_CONTROLLER(controller),
      gtk_shortcut_new(gtk_keyval_trigger_new(GDK_KEY_w, GDK_CONTROL_MASK), gtk_named_action_new("window.close")));
  gtk_widget_add_controller(GTK_WIDGET(window_), controller);
}

}  // namespace tavelle::gtk

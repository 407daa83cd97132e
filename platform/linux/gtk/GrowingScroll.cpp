#include "platform/linux/gtk/GrowingScroll.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tavelle::gtk {

GrowingScroll::GrowingScroll(GtkScrolledWindow* scrolled, int maximum, std::function<void()> laidOut)
    : scrolled_(scrolled), maximum_(maximum), laidOut_(std::move(laidOut)) {
  gtk_scrolled_window_set_policy(scrolled_, GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
  g_signal_connect(gtk_scrolled_window_get_vadjustment(scrolled_), "changed", G_CALLBACK(onChanged), this);
}

GrowingScroll::~GrowingScroll() {
  g_signal_handlers_disconnect_by_data(gtk_scrolled_window_get_vadjustment(scrolled_), this);
  if (awaitedFrame_ != 0) gtk_widget_remove_tick_callback(GTK_WIDGET(scrolled_), awaitedFrame_);
}

void GrowingScroll::setMinimum(int points) {
  minimum_ = points;
  grow();
}

// In the midst of a layout, which must not be asked to be made anew before it is done.
void GrowingScroll::onChanged(GtkAdjustment*, gpointer self) {
  auto& scroll = *static_cast<GrowingScroll*>(self);
  if (scroll.awaitedFrame_ != 0) return;
  scroll.awaitedFrame_ = gtk_widget_add_tick_callback(GTK_WIDGET(scroll.scrolled_), onFrame, self, nullptr);
}

gboolean GrowingScroll::onFrame(GtkWidget*, GdkFrameClock*, gpointer self) {
  auto& scroll = *static_cast<GrowingScroll*>(self);
  scroll.awaitedFrame_ = 0;
  scroll.grow();
  scroll.laidOut_();
  return G_SOURCE_REMOVE;
}

void GrowingScroll::grow() {
  const auto content = std::ceil(gtk_adjustment_get_upper(gtk_scrolled_window_get_vadjustment(scrolled_)));
  const auto height = static_cast<int>(std::min<double>(content, maximum_));
  gtk_scrolled_window_set_min_content_height(scrolled_, std::max(height, minimum_));
}

}  // namespace tavelle::gtk

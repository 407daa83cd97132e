#pragma once

#include <gtk/gtk.h>

#include <functional>

namespace tavelle::gtk {

// Has a scrolled window grow with its content, from `minimum` to `maximum` points: it stands in the row of a list,
// which gives each row only what it cannot do without. Calls `laidOut` whenever the content has got another size.
class GrowingScroll {
 public:
  GrowingScroll(
      GtkScrolledWindow* scrolled, int maximum, std::function<void()> laidOut = [] {});
  ~GrowingScroll();
  GrowingScroll(const GrowingScroll&) = delete;
  GrowingScroll& operator=(const GrowingScroll&) = delete;

  void setMinimum(int points);

 private:
  static void onChanged(GtkAdjustment*, gpointer self);
  static gboolean onFrame(GtkWidget*, GdkFrameClock*, gpointer self);
  void grow();

  GtkScrolledWindow* scrolled_;
  int minimum_ = -1;
  int maximum_;
  std::function<void()> laidOut_;
  guint awaitedFrame_ = 0;
};

}  // namespace tavelle::gtk

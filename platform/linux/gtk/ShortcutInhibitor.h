#pragma once

#include <X11/extensions/XInput2.h>
#include <gtk/gtk.h>

namespace tavelle::gtk {

// Has a window get every key, also those that are somebody's hotkey everywhere else: the desktop's, another program's,
// Tavelle's own. That is so while it is wanted and the window has the keyboard; then nobody else gets any.
//
// On X11 no menu of another program opens meanwhile. So the keys are let go when the person clicks elsewhere, until the
// pointer or the keyboard comes back.
class ShortcutInhibitor {
 public:
  // Of the window that `widget` stands in while it is on the screen.
  explicit ShortcutInhibitor(GtkWidget* widget);
  ~ShortcutInhibitor();
  ShortcutInhibitor(const ShortcutInhibitor&) = delete;
  ShortcutInhibitor& operator=(const ShortcutInhibitor&) = delete;

  void want(bool isWanted);

 private:
  static void onChanged(gpointer self);
  static gboolean onXEvent(GdkDisplay*, gpointer event, gpointer self);

  GdkSurface* window() const;
  void watchClicks() const;
  void hear(const XIEvent& event);
  void hearPointer(const XIEnterEvent& event);
  void hearKeyboard(const XIFocusInEvent& event);
  bool isInFront() const;
  void follow() const;

  GtkWidget* widget_;
  bool isWanted_ = false;
  bool hasKeyboardGone_ = false;
  bool isPointerElsewhere_ = false;
  bool wasClickElsewhere_ = false;
};

}  // namespace tavelle::gtk

#include "platform/linux/gtk/GrowingScroll.h"
#include "platform/linux/gtk/Widgets.h"

#include <algorithm>
#include <utility>

namespace tavelle::gtk {
namespace {

using view::Attribute;

// Grows with its text up to a point, and then scrolls.
class TextEditorWidget : public Widget {
 public:
  explicit TextEditorWidget(Report report) : Widget(gtk_scrolled_window_new(), std::move(report)) {
    constexpr int margin = 8;
    gtk_text_view_set_wrap_mode(view_, GTK_WRAP_WORD_CHAR);
    gtk_text_view_set_left_margin(view_, margin);
    gtk_text_view_set_right_margin(view_, margin);
    gtk_text_view_set_top_margin(view_, margin);
    gtk_text_view_set_bottom_margin(view_, margin);
    gtk_text_view_set_accepts_tab(view_, false);  // it goes on to the next control, as everywhere in the window

    gtk_scrolled_window_set_child(GTK_SCROLLED_WINDOW(root()), GTK_WIDGET(view_));
    gtk_widget_add_css_class(root(), "editor-in-row");
    connect(buffer_, "changed", [this] {
      endLongRuns();
      this->report(view::Edited{shownText()});
    });
  }

 protected:
  GtkWidget* control() const override { return GTK_WIDGET(view_); }

  void show(Attribute attribute) override {
    switch (attribute) {
      case Attribute::value:
        return showText(text(attribute));
      case Attribute::monospaced:
        return gtk_text_view_set_monospace(view_, isOn(attribute));
      case Attribute::minimumHeight:
        return scroll_.setMinimum(static_cast<int>(number(attribute, -1)));
      default:
        return Widget::show(attribute);
    }
  }

 private:
  std::string shownText() const {
    GtkTextIter start;
    GtkTextIter end;
    gtk_text_buffer_get_bounds(buffer_, &start, &end);
    return GPtr<>{gtk_text_buffer_get_text(buffer_, &start, &end, true)}.get();
  }

  // What is there already is not touched, for its cursor, its input method and what can be undone.
  void showText(const std::string& value) {
    if (shownText() == value) return;
    GtkTextIter cursor;
    gtk_text_buffer_get_iter_at_mark(buffer_, &cursor, gtk_text_buffer_get_insert(buffer_));
    const int offset = gtk_text_iter_get_offset(&cursor);
    gtk_text_buffer_set_text(buffer_, value.c_str(), static_cast<int>(value.size()));
    gtk_text_buffer_get_iter_at_offset(buffer_, &cursor, std::min(offset, gtk_text_buffer_get_char_count(buffer_)));
    gtk_text_buffer_place_cursor(buffer_, &cursor);
  }

  // HACK: Pango has 31 bits for the width of a run of text, in parts of a pixel, before it breaks the run into lines: a
  // paragraph of a quarter of a million characters in one run is not shown at all. A tag ends a run where it begins and
  // ends; this one changes nothing that could be seen.
  void endLongRuns() {
    if (gtk_text_buffer_get_char_count(buffer_) <= longestRun) return;
    GtkTextIter line;
    gtk_text_buffer_get_start_iter(buffer_, &line);
    do {
      if (hasLongRun(line)) divide(line);
    } while (gtk_text_iter_forward_line(&line));
  }

  bool hasLongRun(const GtkTextIter& line) const {
    const int end = endOf(line);
    for (GtkTextIter at = line; gtk_text_iter_get_offset(&at) < end;) {
      const int start = gtk_text_iter_get_offset(&at);
      if (!gtk_text_iter_forward_to_tag_toggle(&at, runEnds_)) return end - start > longestRun;
      if (std::min(end, gtk_text_iter_get_offset(&at)) - start > longestRun) return true;
    }
    return false;
  }

  void divide(const GtkTextIter& line) {
    constexpr int length = longestRun / 2;  // there is room to grow
    const int end = endOf(line);
    bool isTagged = false;
    for (int at = gtk_text_iter_get_offset(&line); at < end; at += length, isTagged = !isTagged) {
      GtkTextIter from;
      GtkTextIter to;
      gtk_text_buffer_get_iter_at_offset(buffer_, &from, at);
      gtk_text_buffer_get_iter_at_offset(buffer_, &to, std::min(at + length, end));
      const auto say = isTagged ? gtk_text_buffer_apply_tag : gtk_text_buffer_remove_tag;
      say(buffer_, runEnds_, &from, &to);
    }
  }

  static int endOf(const GtkTextIter& line) {
    return gtk_text_iter_get_offset(&line) + gtk_text_iter_get_chars_in_line(&line);
  }

  static constexpr int longestRun = 20'000;  // and those of the widest letters in large type
  static constexpr int aFewLines = 170;

  GtkTextView* view_ = GTK_TEXT_VIEW(gtk_text_view_new());
  GtkTextBuffer* buffer_ = gtk_text_view_get_buffer(view_);
  GtkTextTag* runEnds_ = gtk_text_buffer_create_tag(buffer_, nullptr, "letter-spacing", 1, nullptr);
  GrowingScroll scroll_{GTK_SCROLLED_WINDOW(root()), aFewLines};
};

}  // namespace

WidgetPtr makeTextEditor(Widget::Report report) {
  return std::make_unique<TextEditorWidget>(std::move(report));
}

}  // namespace tavelle::gtk

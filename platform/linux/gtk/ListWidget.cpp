#include "platform/linux/gtk/GrowingScroll.h"
#include "platform/linux/gtk/Widgets.h"

#include <algorithm>
#include <utility>

namespace tavelle::gtk {
namespace {

using view::Attribute;

// Shows a few rows, and scrolls to the others.
class ListWidget : public Widget {
 public:
  explicit ListWidget(Report report) : Widget(gtk_scrolled_window_new(), std::move(report)) {
    gtk_scrolled_window_set_child(GTK_SCROLLED_WINDOW(root()), GTK_WIDGET(list_));
    gtk_widget_add_css_class(root(), "list-in-row");
    gtk_widget_add_css_class(GTK_WIDGET(list_), "navigation-sidebar");
    connect(list_, "row-selected", [this] { chosen(); });
  }

 protected:
  GtkWidget* control() const override { return GTK_WIDGET(list_); }

  void show(Attribute attribute) override {
    if (attribute == Attribute::value) return select();
    if (attribute != Attribute::minimumHeight) return Widget::show(attribute);
    scroll_.setMinimum(static_cast<int>(number(attribute, -1)));
  }

  void place(Widget& row, Widget* after) override {
    const auto position = after ? std::find(rows_.begin(), rows_.end(), after) + 1 : rows_.begin();
    gtk_list_box_insert(list_, row.root(), static_cast<int>(position - rows_.begin()));
    rows_.insert(position, &row);
    if (row.text(Attribute::tag) == text(Attribute::value)) select();
  }

  void take(Widget& row) override {
    std::erase(rows_, &row);
    gtk_list_box_remove(list_, row.root());
  }

 private:
  void select() {
    const auto found = std::find_if(rows_.begin(), rows_.end(), [tag = text(Attribute::value)](const Widget* row) {
      return row->text(Attribute::tag) == tag;
    });
    gtk_list_box_select_row(list_, found == rows_.end() ? nullptr : GTK_LIST_BOX_ROW((*found)->root()));
    reveal();
  }

  void chosen() {
    auto* const selected = gtk_list_box_get_selected_row(list_);
    const auto found = std::find_if(rows_.begin(), rows_.end(),
                                    [selected](const Widget* row) { return row->root() == GTK_WIDGET(selected); });
    report(view::Selected{found == rows_.end() ? "" : (*found)->text(Attribute::tag)});
  }

  // Asked again when the list is laid out: a row that was added has no place before.
  void reveal() {
    auto* const row = gtk_list_box_get_selected_row(list_);
    graphene_rect_t place;
    if (!row || !gtk_widget_compute_bounds(GTK_WIDGET(row), GTK_WIDGET(list_), &place)) return;
    constexpr double margin = 6;
    const auto top = static_cast<double>(place.origin.y) - margin;
    gtk_adjustment_clamp_page(gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(root())), top,
                              top + static_cast<double>(place.size.height) + 2 * margin);
  }

  static constexpr int aFewRows = 160;

  GtkListBox* list_ = GTK_LIST_BOX(gtk_list_box_new());
  std::vector<Widget*> rows_;
  GrowingScroll scroll_{GTK_SCROLLED_WINDOW(root()), aFewRows, [this] { reveal(); }};
};

// A name, and what else there is to say of it at the other end.
class RowWidget : public Widget {
 public:
  RowWidget() : Widget(gtk_list_box_row_new(), nullptr) {
    gtk_list_box_row_set_child(GTK_LIST_BOX_ROW(root()), GTK_WIDGET(box_));
  }

 protected:
  void place(Widget& child, Widget* after) override {
    gtk_box_insert_child_after(box_, child.root(), after ? after->root() : nullptr);
    if (GTK_IS_LABEL(child.root())) keepOnOneLine(GTK_LABEL(child.root()), !after);
    readOut();
  }

  void take(Widget& child) override {
    gtk_box_remove(box_, child.root());
    readOut();
  }

 private:
  static void keepOnOneLine(GtkLabel* label, bool isFirst) {
    gtk_label_set_wrap(label, false);
    gtk_label_set_single_line_mode(label, true);
    if (!isFirst) return;
    gtk_label_set_ellipsize(label, PANGO_ELLIPSIZE_END);
    gtk_widget_set_hexpand(GTK_WIDGET(label), true);
  }

  // For a screen reader a row is called what it shows.
  void readOut() const {
    GList* labels = nullptr;
    for (auto* child = gtk_widget_get_last_child(GTK_WIDGET(box_)); child; child = gtk_widget_get_prev_sibling(child)) {
      labels = g_list_prepend(labels, child);
    }
    GValue value = G_VALUE_INIT;
    g_value_init(&value, G_TYPE_POINTER);
    g_value_set_pointer(&value, labels);
    GtkAccessibleRelation relation = GTK_ACCESSIBLE_RELATION_LABELLED_BY;
    if (labels) gtk_accessible_update_relation_value(GTK_ACCESSIBLE(root()), 1, &relation, &value);
    g_value_unset(&value);  // the list belongs to the row now
  }

  GtkBox* box_ = GTK_BOX(gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 12));
};

}  // namespace

WidgetPtr makeList(Widget::Report report) {
  return std::make_unique<ListWidget>(std::move(report));
}

WidgetPtr makeRow() {
  return std::make_unique<RowWidget>();
}

}  // namespace tavelle::gtk

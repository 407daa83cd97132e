#pragma once

#include "platform/linux/GObjectPtr.h"
#include "view/Attributes.h"
#include "view/Event.h"

#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

namespace tavelle::gtk {

// One node on the screen. It shows what is said of the node, and reports what the person does to it; what the toolkit
// signals while something is being shown is nobody's doing and is not reported.
class Widget {
 public:
  using Report = std::function<void(view::Input)>;

  // `root` is what its parent places.
  Widget(GtkWidget* root, Report report);
  virtual ~Widget();
  Widget(const Widget&) = delete;
  Widget& operator=(const Widget&) = delete;

  GtkWidget* root() const { return root_.get(); }

  void say(const view::Attributes& changes);
  std::string text(view::Attribute attribute) const;
  double number(view::Attribute attribute, double otherwise) const;
  bool isOn(view::Attribute attribute, bool otherwise = false) const;
  // The title as the toolkit's labels with mnemonics want it: the letter that leads here by Alt is marked.
  std::string titleWithMnemonic() const;
  bool isSaid(view::Attribute attribute) const { return attributes_.find(attribute) != nullptr; }

  // Right behind `after`; in front where that is null.
  void insert(Widget& child, Widget* after);
  void remove(Widget& child);
  void move(Widget& child, Widget* after);

 protected:
  // Brings what is on the screen in step with what is said now of `attribute`.
  virtual void show(view::Attribute attribute);
  virtual void place(Widget& child, Widget* after);
  virtual void take(Widget& child);

  // What takes the input, and carries the name for assistive technology.
  virtual GtkWidget* control() const { return root(); }

  void nameControl(const std::string& name) const;
  // Has the mnemonic of a row's title lead to a control in the row.
  void leadTo(GtkWidget* control) const;
  void report(view::Input input) const;
  // Has `handler` called at each of the signals, for as long as this lives.
  void connect(gpointer instance, const char* signal, std::function<void()> handler);

 private:
  struct Connection {
    GObjectPtr<GObject> instance;
    gulong handler;
  };

  void whileShowing(const std::function<void()>& show);

  GObjectPtr<GtkWidget> root_;
  Report report_;
  view::Attributes attributes_;
  std::vector<Connection> connections_;
  bool isShowing_ = false;
};

}  // namespace tavelle::gtk

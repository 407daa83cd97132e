// The application of the bench: a GTK 3 text view that writes down, with the time, which keys and pastes reach it.
//
// Commands on standard input:   load FILE | settle NUMBER | text FILE
// Lines on standard output:     one JSON object each; times are nanoseconds of CLOCK_MONOTONIC.
#include <gdk/gdkx.h>
#include <gtk/gtk.h>

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <string_view>

namespace {

GtkWidget* window = nullptr;
GtkWidget* view = nullptr;
GtkTextBuffer* buffer = nullptr;

std::int64_t now() {
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC, &time);
  return time.tv_sec * INT64_C(1'000'000'000) + time.tv_nsec;
}

gboolean tellKey(GtkWidget*, GdkEventKey* event, gpointer) {
  std::printf("{\"event\":\"key\",\"t\":%" PRId64 ",\"down\":%s,\"keycode\":%u,\"control\":%s}\n", now(),
              event->type == GDK_KEY_PRESS ? "true" : "false", event->hardware_keycode,
              event->state & GDK_CONTROL_MASK ? "true" : "false");
  return GDK_EVENT_PROPAGATE;
}

void tellPasted(GtkTextBuffer*, GtkClipboard*, gpointer) {
  std::printf("{\"event\":\"pasted\",\"t\":%" PRId64 "}\n", now());
}

gboolean tellSettled(gpointer number) {
  std::printf("{\"event\":\"settled\",\"t\":%" PRId64 ",\"number\":%d}\n", now(), GPOINTER_TO_INT(number));
  return G_SOURCE_REMOVE;
}

void load(const std::string& file) {
  char* text = nullptr;
  gsize size = 0;
  if (!g_file_get_contents(file.c_str(), &text, &size, nullptr)) std::exit(EXIT_FAILURE);
  gtk_text_buffer_set_text(buffer, text, static_cast<int>(size));
  g_free(text);
  GtkTextIter start;
  GtkTextIter end;
  gtk_text_buffer_get_bounds(buffer, &start, &end);
  gtk_text_buffer_select_range(buffer, &start, &end);
  gtk_window_present(GTK_WINDOW(window));
  gtk_widget_grab_focus(view);
}

void storeText(const std::string& file) {
  GtkTextIter start;
  GtkTextIter end;
  gtk_text_buffer_get_bounds(buffer, &start, &end);
  char* const text = gtk_text_buffer_get_text(buffer, &start, &end, TRUE);
  g_file_set_contents(file.c_str(), text, -1, nullptr);
  g_free(text);
  std::puts("{\"event\":\"stored\"}");
}

void obey(std::string_view line) {
  const auto space = line.find(' ');
  const auto command = line.substr(0, space);
  const std::string argument{line.substr(space + 1)};
  if (command == "load") load(argument);
  if (command == "text") storeText(argument);
  // All that the change of the text entailed (layout, drawing) comes before an idle source of low priority.
  if (command == "settle")
    g_idle_add_full(G_PRIORITY_LOW, tellSettled, GINT_TO_POINTER(std::atoi(argument.c_str())), nullptr);
}

gboolean readCommands(GIOChannel* channel, GIOCondition, gpointer) {
  do {
    char* line = nullptr;
    gsize end = 0;
    if (g_io_channel_read_line(channel, &line, nullptr, &end, nullptr) != G_IO_STATUS_NORMAL) {
      gtk_main_quit();
      return G_SOURCE_REMOVE;
    }
    obey({line, end});
    g_free(line);
  } while (g_io_channel_get_buffer_condition(channel) & G_IO_IN);
  return G_SOURCE_CONTINUE;
}

void buildWindow() {
  window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  gtk_window_set_title(GTK_WINDOW(window), "Bench");
  gtk_window_set_default_size(GTK_WINDOW(window), 700, 500);
  GtkWidget* const scroller = gtk_scrolled_window_new(nullptr, nullptr);
  view = gtk_text_view_new();
  buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(view));
  gtk_container_add(GTK_CONTAINER(scroller), view);
  gtk_container_add(GTK_CONTAINER(window), scroller);
  g_signal_connect(window, "key-press-event", G_CALLBACK(tellKey), nullptr);
  g_signal_connect(buffer, "paste-done", G_CALLBACK(tellPasted), nullptr);
  g_signal_connect(window, "destroy", G_CALLBACK(gtk_main_quit), nullptr);
  gtk_widget_show_all(window);
}

}  // namespace

int main(int count, char** arguments) {
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  gtk_init(&count, &arguments);
  buildWindow();
  GIOChannel* const commands = g_io_channel_unix_new(0);
  g_io_channel_set_encoding(commands, nullptr, nullptr);
  g_io_add_watch(commands, static_cast<GIOCondition>(G_IO_IN | G_IO_HUP), readCommands, nullptr);
  std::puts("{\"event\":\"ready\"}");
  gtk_main();
  g_io_channel_unref(commands);
}

/* The least that a toolkit's window needs: one of the settings window's size, with a header bar and one field.
 *
 * Commands on standard input: hide, show. */
#include <adwaita.h>
#include <stdlib.h>
#include <string.h>

static GtkWindow* window;
static GtkWidget* field;

static gboolean obey(GIOChannel* channel, GIOCondition condition, gpointer data) {
  char* line = NULL;
  (void)condition;
  (void)data;
  if (g_io_channel_read_line(channel, &line, NULL, NULL, NULL) != G_IO_STATUS_NORMAL) exit(EXIT_SUCCESS);
  if (strcmp(line, "hide\n") == 0) gtk_widget_set_visible(GTK_WIDGET(window), FALSE);
  if (strcmp(line, "show\n") == 0) gtk_window_present(window);
  g_free(line);
  return G_SOURCE_CONTINUE;
}

static GtkWidget* content(void) {
  GtkWidget* list = gtk_list_box_new();
  GtkWidget* row = adw_entry_row_new();
  adw_preferences_row_set_title(ADW_PREFERENCES_ROW(row), "Name:");
  gtk_list_box_append(GTK_LIST_BOX(list), row);
  gtk_widget_set_size_request(list, 480, 500);
  return list;
}

int main(void) {
  g_set_prgname("bench-window");
  if (!gtk_init_check()) return EXIT_FAILURE;
  adw_init();
  GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
  gtk_box_append(GTK_BOX(box), adw_header_bar_new());
  gtk_box_append(GTK_BOX(box), content());
  window = GTK_WINDOW(adw_window_new());
  gtk_window_set_resizable(window, FALSE);
  adw_window_set_content(ADW_WINDOW(window), box);
  gtk_widget_grab_focus(field);
  gtk_window_present(window);
  g_io_add_watch(g_io_channel_unix_new(0), G_IO_IN | G_IO_HUP, obey, NULL);
  g_main_loop_run(g_main_loop_new(NULL, FALSE));
}

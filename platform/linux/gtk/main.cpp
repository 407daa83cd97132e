#include "platform/linux/InheritedSocket.h"
#include "platform/linux/LineSocket.h"
#include "platform/linux/gtk/RendererWindow.h"

#include <cstdio>
#include <memory>
#include <utility>

namespace {

void useOwnLooks() {
  auto* const display = gdk_display_get_default();
  gtk_icon_theme_add_resource_path(gtk_icon_theme_get_for_display(display), "/app/tavelle/settings/icons");
  const tavelle::GObjectPtr<GtkCssProvider> style{gtk_css_provider_new()};
  gtk_css_provider_load_from_resource(style.get(), "/app/tavelle/settings/style.css");
  gtk_style_context_add_provider_for_display(display, GTK_STYLE_PROVIDER(style.get()),
                                             GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
}

}  // namespace

int main() {
  using namespace tavelle;

  auto joined = inheritedSocket();  // with the process that owns the window
  if (!joined) {
    std::fputs("tavelle-settings draws Tavelle's settings window; it is started by tavelle itself\n", stderr);
    return 2;
  }
  g_set_prgname("app.tavelle.Tavelle");  // by which a desktop finds the icon of a window
  g_set_application_name("Tavelle");
  if (!gtk_init_check()) {
    std::fputs("tavelle-settings: there is no display\n", stderr);
    return 1;
  }
  adw_init();
  useOwnLooks();

  const std::unique_ptr<GMainLoop, decltype(&g_main_loop_unref)> loop{g_main_loop_new(nullptr, false),
                                                                      g_main_loop_unref};
  std::unique_ptr<LineSocket> socket;
  gtk::RendererWindow window{[&socket](const std::string& line) { socket->send(line); }};
  socket = std::make_unique<LineSocket>(
      std::move(joined), LineSocket::Handlers{[&window](const std::string& line) { window.receive(line); },
                                              [&loop](const std::string& why) {
                                                std::fprintf(stderr, "tavelle-settings: %s\n", why.c_str());
                                                g_main_loop_quit(loop.get());
                                              }});
  g_main_loop_run(loop.get());
  return 0;
}

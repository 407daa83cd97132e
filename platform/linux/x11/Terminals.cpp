#include "platform/linux/x11/Terminals.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>

namespace tavelle::x11 {
namespace {

struct Terminal {
  std::string_view name;  // in lower case
  EditingKeys keys;
};

constexpr auto controlShift = EditingKeys::controlShift;
constexpr auto none = EditingKeys::none;

constexpr std::array terminals = {
    Terminal{"alacritty", controlShift},
    Terminal{"app.devsuite.ptyxis", controlShift},
    Terminal{"blackbox", controlShift},
    Terminal{"com.gexperts.tilix", controlShift},
    Terminal{"com.mitchellh.ghostty", controlShift},
    Terminal{"com.raggesilver.blackbox", controlShift},
    Terminal{"com.system76.cosmicterm", controlShift},
    Terminal{"contour", controlShift},
    Terminal{"cool-retro-term", controlShift},
    Terminal{"deepin-terminal", controlShift},
    Terminal{"dev.warp.warp", controlShift},
    Terminal{"foot", controlShift},
    Terminal{"footclient", controlShift},
    Terminal{"ghostty", controlShift},
    Terminal{"gnome-terminal", controlShift},
    Terminal{"gnome-terminal-server", controlShift},
    Terminal{"guake", controlShift},
    Terminal{"hyper", controlShift},
    Terminal{"io.elementary.terminal", controlShift},
    Terminal{"kgx", controlShift},
    Terminal{"kitty", controlShift},
    Terminal{"konsole", controlShift},
    Terminal{"lilyterm", controlShift},
    Terminal{"lxterminal", controlShift},
    Terminal{"mate-terminal", controlShift},
    Terminal{"org.contourterminal.contour", controlShift},
    Terminal{"org.gnome.console", controlShift},
    Terminal{"org.gnome.ptyxis", controlShift},
    Terminal{"org.gnome.terminal", controlShift},
    Terminal{"org.wezfurlong.wezterm", controlShift},
    Terminal{"pantheon-terminal", controlShift},
    Terminal{"ptyxis", controlShift},
    Terminal{"qterminal", controlShift},
    Terminal{"rio", controlShift},
    Terminal{"roxterm", controlShift},
    Terminal{"sakura", controlShift},
    Terminal{"st", controlShift},
    Terminal{"st-256color", controlShift},
    Terminal{"tabby", controlShift},
    Terminal{"terminator", controlShift},
    Terminal{"terminology", controlShift},
    Terminal{"termite", controlShift},
    Terminal{"tilda", controlShift},
    Terminal{"tilix", controlShift},
    Terminal{"warp", controlShift},
    Terminal{"wezterm", controlShift},
    Terminal{"xfce4-terminal", controlShift},
    Terminal{"yakuake", controlShift},
    Terminal{"zutty", controlShift},

    Terminal{"aterm", none},
    Terminal{"eterm", none},
    Terminal{"koi8rxterm", none},
    Terminal{"kterm", none},
    Terminal{"lxterm", none},
    Terminal{"mlterm", none},
    Terminal{"mrxvt", none},
    Terminal{"multi-aterm", none},
    Terminal{"pterm", none},
    Terminal{"putty", none},
    Terminal{"rxvt", none},
    Terminal{"rxvt-unicode", none},
    Terminal{"urxvt", none},
    Terminal{"uxterm", none},
    Terminal{"wterm", none},
    Terminal{"xterm", none},
    Terminal{"xvt", none},
};

std::optional<EditingKeys> known(const std::string& name) {
  const auto terminal = std::ranges::find(terminals, std::string_view{name}, &Terminal::name);
  if (terminal != terminals.end()) return terminal->keys;
  // An unknown program that calls itself a terminal: what most of the younger ones do interrupts nothing there.
  if (name.ends_with("terminal")) return controlShift;
  return std::nullopt;
}

std::string lowerCased(std::string_view text) {
  std::string lower{text};
  for (char& letter : lower) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return lower;
}

}  // namespace

EditingKeys editingKeysOf(std::string_view instanceName, std::string_view className) {
  // The class first: the instance name is the person's to choose in many terminals.
  if (const auto keys = known(lowerCased(className))) return *keys;
  if (const auto keys = known(lowerCased(instanceName))) return *keys;
  return EditingKeys::control;
}

}  // namespace tavelle::x11

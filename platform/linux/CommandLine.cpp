#include "platform/linux/CommandLine.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

namespace tavelle {
namespace {

constexpr const char* help =
    "Usage: tavelle [LINK...]\n"
    "\n"
    "Starts Tavelle, which rewords the text selected in any application. It shows itself in the tray.\n"
    "Started again while it is running, it tells the one that runs and ends.\n"
    "A LINK is one that signs in (tavelle:...), as the desktop opens it.\n"
    "\n"
    "  -h, --help     Show this and exit\n"
    "      --version  Show the version and exit\n";

bool asksFor(std::span<char*> arguments, std::string_view option) {
  return std::any_of(arguments.begin(), arguments.end(), [option](const char* given) { return option == given; });
}

}  // namespace

std::optional<int> answerCommandLine(std::span<char*> arguments) {
  if (arguments.empty()) return std::nullopt;
  const auto given = arguments.subspan(1);
  if (asksFor(given, "--help") || asksFor(given, "-h")) {
    std::fputs(help, stdout);
    return 0;
  }
  if (asksFor(given, "--version")) {
    std::puts("Tavelle " TAVELLE_VERSION);
    return 0;
  }
  return std::nullopt;
}

}  // namespace tavelle

// The program's command line: a link on it carries the person's token.

#include "platform/linux/CommandLine.h"
#include "platform/linux/LinkPrivacy.h"
#include "tests/fuzz/Fuzz.h"

#include <vector>

namespace tavelle::fuzz {
namespace {

// More than one run can find something in; what is kept of links is kept for good.
constexpr std::size_t mostArguments = 8;

// Arguments in memory that belongs to somebody else, as main()'s do.
struct Arguments {
  explicit Arguments(Input input) {
    memory.emplace_back("tavelle");
    while (!input.isEmpty() && memory.size() < mostArguments) memory.emplace_back(input.takeUntil('\0'));
    given = memory;
    for (auto& argument : memory) pointers.push_back(argument.data());
  }

  std::vector<std::string> given;
  std::vector<std::string> memory;
  std::vector<char*> pointers;
};

bool isOption(const std::string& argument) {
  return argument.starts_with('-');
}

void keepPrivate(Arguments& arguments) {
  keepLinksPrivate(arguments.pointers);
  for (std::size_t at = 0; at < arguments.given.size(); ++at) {
    const auto& given = arguments.given[at];
    require(arguments.pointers[at] == given, "an argument has changed");
    const bool isShown = at == 0 || isOption(given);
    require(arguments.memory[at] == (isShown ? given : std::string(given.size(), '\0')), "a link can be seen");
  }
}

void answer(Arguments& arguments) {
  const auto asks = [](const auto& each) { return each == "--help" || each == "-h" || each == "--version"; };
  const auto links = arguments.given.begin() + 1;
  const auto status = answerCommandLine(arguments.pointers);
  require(status == (std::any_of(links, arguments.given.end(), asks) ? std::optional{0} : std::nullopt),
          "what is asked for is answered, and nothing else");
}

}  // namespace
}  // namespace tavelle::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // The answers would fill the log: libFuzzer's own words are on standard error.
  static const auto* const silence = std::freopen("/dev/null", "w", stdout);
  tavelle::fuzz::require(silence != nullptr, "standard output cannot be silenced");
  tavelle::fuzz::Arguments arguments{{data, size}};
  tavelle::fuzz::keepPrivate(arguments);
  tavelle::fuzz::answer(arguments);
  return 0;
}

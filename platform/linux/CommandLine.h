#pragma once

#include <optional>
#include <span>

namespace tavelle {

// Answers --help and --version on standard output; they need no desktop. No value where `arguments`, which are
// main()'s, ask for neither; the exit status of the process otherwise. Beside them there are only links on Tavelle's
// command line.
std::optional<int> answerCommandLine(std::span<char*> arguments);

}  // namespace tavelle

#include "tests/platform/x11/Program.h"

#include "platform/FatalError.h"
#include "tests/platform/x11/EventLoop.h"

#include <csignal>

namespace tavelle::x11::tests {
namespace {

GObjectPtr<GSubprocess> start(const std::vector<std::string>& command, GSubprocessFlags flags) {
  std::vector<const char*> arguments;
  for (const auto& argument : command) arguments.push_back(argument.c_str());
  arguments.push_back(nullptr);
  GErrorPtr error;
  GObjectPtr<GSubprocess> process{g_subprocess_newv(arguments.data(), flags, Out{error})};
  if (!process) fatalError(error->message);
  return process;
}

struct Exchange {
  bool isDone = false;
  std::string output;

  static void finished(GObject* process, GAsyncResult* result, gpointer exchange) {
    auto& self = *static_cast<Exchange*>(exchange);
    GBytes* output = nullptr;
    g_subprocess_communicate_finish(G_SUBPROCESS(process), result, &output, nullptr, nullptr);
    if (output) {
      gsize size = 0;
      const auto* const bytes = static_cast<const char*>(g_bytes_get_data(output, &size));
      self.output.assign(bytes ? bytes : "", size);
      g_bytes_unref(output);
    }
    self.isDone = true;
  }
};

}  // namespace

std::string Program::outputOf(const std::vector<std::string>& command, const std::string& input) {
  const auto process =
      start(command, static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDIN_PIPE | G_SUBPROCESS_FLAGS_STDOUT_PIPE));
  GBytes* const bytes = g_bytes_new(input.data(), input.size());
  Exchange exchange;
  g_subprocess_communicate_async(process.get(), bytes, nullptr, Exchange::finished, &exchange);
  g_bytes_unref(bytes);
  if (!waitUntil([&] { return exchange.isDone; })) fatalError(command.front() + " did not end");
  return exchange.output;
}

Program::Program(const std::vector<std::string>& command, const std::string& input)
    : process_(start(command,
                     static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDIN_PIPE | G_SUBPROCESS_FLAGS_STDOUT_SILENCE |
                                                   G_SUBPROCESS_FLAGS_STDERR_SILENCE))) {
  auto* const in = g_subprocess_get_stdin_pipe(process_.get());
  g_output_stream_write_all(in, input.data(), input.size(), nullptr, nullptr, nullptr);
  g_output_stream_close(in, nullptr, nullptr);
}

Program::~Program() {
  g_subprocess_send_signal(process_.get(), SIGTERM);
  g_subprocess_wait(process_.get(), nullptr, nullptr);
}

}  // namespace tavelle::x11::tests

#include "platform/linux/InheritedSocket.h"
#include "platform/linux/curl/TransferService.h"

#include <curl/curl.h>
#include <sys/prctl.h>

#include <csignal>
#include <cstdio>
#include <utility>

int main() {
  using namespace tavelle;

  auto joined = inheritedSocket();  // with the process that holds the hotkeys
  if (!joined) {
    std::fputs("tavelle-transfers talks to servers for Tavelle; it is started by tavelle itself\n", stderr);
    return 2;
  }
  prctl(PR_SET_PDEATHSIG, SIGKILL);  // also where it is frozen, and does not notice that the socket has ended
  std::signal(SIGPIPE, SIG_IGN);     // a connection that has gone is an error, and no end
  curl_global_init(CURL_GLOBAL_DEFAULT);
  TransferService{std::move(joined)}.run();
  return 0;
}

#include "platform/linux/URLErrors.h"

#include <algorithm>
#include <iterator>

namespace tavelle {
namespace {

using Code = URLError::Code;

struct Wording {
  Code code;
  const char* text;
};
constexpr Wording wordings[] = {
    {Code::unknown, "unknown error"},
    {Code::cancelled, "cancelled"},
    {Code::badURL, "bad URL"},
    {Code::timedOut, "The request timed out."},
    {Code::unsupportedURL, "unsupported URL"},
    {Code::cannotFindHost, "A server with the specified hostname could not be found."},
    {Code::cannotConnectToHost, "Could not connect to the server."},
    {Code::networkConnectionLost, "The network connection was lost."},
    {Code::httpTooManyRedirects, "too many HTTP redirects"},
    {Code::notConnectedToInternet, "The Internet connection appears to be offline."},
    {Code::badServerResponse, "There was a bad response from the server."},
    {Code::cannotDecodeContentData, "cannot decode raw data"},
    {Code::secureConnectionFailed, "An SSL error has occurred and a secure connection to the server cannot be made."},
};

}  // namespace

URLError urlError(Code code) {
  const auto* found =
      std::find_if(std::begin(wordings), std::end(wordings), [code](const auto& each) { return each.code == code; });
  return {code, found != std::end(wordings) ? found->text : wordings[0].text};
}

}  // namespace tavelle

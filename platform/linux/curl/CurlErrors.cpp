#include "platform/linux/curl/CurlErrors.h"

#include "platform/linux/URLErrors.h"
#include "platform/linux/curl/WebAddress.h"

#include <algorithm>
#include <cerrno>
#include <string>

namespace tavelle {
namespace {

using Code = URLError::Code;

struct Mapping {
  CURLcode result;
  Code code;
};
constexpr Mapping mappings[] = {
    {CURLE_UNSUPPORTED_PROTOCOL, Code::unsupportedURL},
    {CURLE_URL_MALFORMAT, Code::badURL},
    {CURLE_COULDNT_RESOLVE_PROXY, Code::cannotFindHost},
    {CURLE_COULDNT_RESOLVE_HOST, Code::cannotFindHost},
    {CURLE_COULDNT_CONNECT, Code::cannotConnectToHost},
    {CURLE_PROXY, Code::cannotConnectToHost},
    {CURLE_OPERATION_TIMEDOUT, Code::timedOut},
    {CURLE_TOO_MANY_REDIRECTS, Code::httpTooManyRedirects},
    {CURLE_BAD_CONTENT_ENCODING, Code::cannotDecodeContentData},
    {CURLE_WEIRD_SERVER_REPLY, Code::badServerResponse},
    {CURLE_PARTIAL_FILE, Code::networkConnectionLost},
    {CURLE_GOT_NOTHING, Code::networkConnectionLost},
    {CURLE_SEND_ERROR, Code::networkConnectionLost},
    {CURLE_RECV_ERROR, Code::networkConnectionLost},
    {CURLE_HTTP2, Code::networkConnectionLost},
    {CURLE_HTTP2_STREAM, Code::networkConnectionLost},
    {CURLE_SSL_CONNECT_ERROR, Code::secureConnectionFailed},
    {CURLE_SSL_CIPHER, Code::secureConnectionFailed},
    {CURLE_SSL_CACERT_BADFILE, Code::secureConnectionFailed},
    {CURLE_PEER_FAILED_VERIFICATION, Code::serverCertificateUntrusted},
    {CURLE_SSL_ISSUER_ERROR, Code::serverCertificateUntrusted},
    {CURLE_SSL_INVALIDCERTSTATUS, Code::serverCertificateUntrusted},
};

// The host that the transfer last spoke to.
std::string lastHost(CURL* handle) {
  const char* address = nullptr;
  curl_easy_getinfo(handle, CURLINFO_EFFECTIVE_URL, &address);
  return address ? hostOf(address) : std::string{};
}

bool isNetworkUnreachable(CURL* handle) {
  long error = 0;
  curl_easy_getinfo(handle, CURLINFO_OS_ERRNO, &error);
  return error == ENETUNREACH || error == ENETDOWN;
}

// The proxy answered, and would not let us through to the server.
bool isRefusedByProxy(CURL* handle) {
  long answer = 0;
  curl_easy_getinfo(handle, CURLINFO_HTTP_CONNECTCODE, &answer);
  return answer != 0 && answer / 100 != 2;
}

}  // namespace

URLError transferError(CURL* handle, CURLcode result) {
  if (isRefusedByProxy(handle)) {
    return {Code::cannotConnectToHost, "There was a problem communicating with the secure web proxy server (HTTPS)."};
  }
  const auto* found = std::find_if(std::begin(mappings), std::end(mappings),
                                   [result](const auto& each) { return each.result == result; });
  if (found == std::end(mappings)) return urlError(Code::unknown);
  if (found->code == Code::cannotConnectToHost && isNetworkUnreachable(handle))
    return urlError(Code::notConnectedToInternet);
  if (found->code != Code::serverCertificateUntrusted) return urlError(found->code);
  return {found->code,
          "The certificate for this server is invalid. You might be connecting to a server that is pretending to be “" +
              lastHost(handle) + "” which could put your confidential information at risk."};
}

}  // namespace tavelle

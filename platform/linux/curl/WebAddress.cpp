#include "platform/linux/curl/WebAddress.h"

#include "platform/linux/curl/CurlHandles.h"

namespace tavelle {
namespace {

std::string part(CURLU* url, CURLUPart which) {
  char* text = nullptr;
  if (curl_url_get(url, which, &text, CURLU_DEFAULT_PORT) != CURLUE_OK) return {};
  return CurlString{text}.get();
}

CurlURL parsed(const char* text) {
  CurlURL url{curl_url()};
  if (url && curl_url_set(url.get(), CURLUPART_URL, text, 0) != CURLUE_OK) url.reset();
  return url;
}

// The default port is written too, so that it is equal to itself.
std::string originOf(const char* url) {
  const auto address = parsed(url);
  if (!address) return {};
  return part(address.get(), CURLUPART_SCHEME) + "://" + part(address.get(), CURLUPART_HOST) + ":" +
         part(address.get(), CURLUPART_PORT);
}

}  // namespace

std::string hostOf(const char* url) {
  const auto address = parsed(url);
  return address ? part(address.get(), CURLUPART_HOST) : std::string{};
}

bool isSameOrigin(const char* one, const char* other) {
  const auto origin = originOf(one);
  return !origin.empty() && curl_strequal(origin.c_str(), originOf(other).c_str()) != 0;
}

bool isOnThisMachine(const char* url) {
  const auto host = hostOf(url);
  const auto nameAt = host.rfind('.') + 1;  // of the last label
  const bool isIPv4 = !host.empty() && host.find_first_not_of("0123456789.") == std::string::npos;
  return curl_strequal(host.c_str() + nameAt, "localhost") != 0 || host == "[::1]" ||
         (isIPv4 && host.starts_with("127."));
}

}  // namespace tavelle

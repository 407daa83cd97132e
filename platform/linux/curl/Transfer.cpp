#include "platform/linux/curl/Transfer.h"

#include "platform/linux/URLErrors.h"
#include "platform/linux/curl/CurlErrors.h"
#include "platform/linux/curl/TrustStore.h"
#include "platform/linux/curl/WebAddress.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace tavelle {
namespace {

constexpr int mostRedirections = 20;
constexpr const char* webSchemes = "http,https";
constexpr const char* secureScheme = "https";
constexpr long receiveBufferSize = 64L * 1024;
constexpr curl_off_t mostReserved = 64L * 1024 * 1024;

// As libcurl wants it: a header without a value is written with a semicolon, one with a colon would not be sent.
std::string headerLine(const std::string& name, const std::string& value) {
  const bool isBlank = value.find_first_not_of(" \t") == std::string::npos;
  return isBlank ? name + ";" : name + ": " + value;
}

// Where the answer at hand sends the request, as an absolute URL; null where it does not.
const char* redirectionTarget(CURL* handle) {
  const char* target = nullptr;
  curl_easy_getinfo(handle, CURLINFO_REDIRECT_URL, &target);
  return target;
}

// A POST becomes a GET after 301, 302 and 303, and stays one after 307 and 308 (RFC 9110, 15.4).
bool becomesGet(long status, const std::string& method) {
  return method != "HEAD" && (status == 303 || (method == "POST" && (status == 301 || status == 302)));
}

}  // namespace

Transfer::Transfer(StartTransfer order, Answer answer)
    : id_(order.id),
      request_(std::move(order.request)),
      authorities_(std::move(order.authorities)),
      answer_(std::move(answer)) {}

Transfer::~Transfer() = default;

Transfer* Transfer::of(CURL* handle) {
  char* transfer = nullptr;
  curl_easy_getinfo(handle, CURLINFO_PRIVATE, &transfer);
  return reinterpret_cast<Transfer*>(transfer);
}

CURL* Transfer::prepare() {
  handle_.reset(curl_easy_init());
  if (!handle_ || !setHeaders(false) || !setAddress(request_.url.absoluteString())) return nullptr;
  noteActivity();
  setConnectionOptions();
  setMessageOptions();
  setCallbacks();
  return handle_.get();
}

void Transfer::setConnectionOptions() {
  CURL* handle = handle_.get();
  curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, request_.url.scheme() == secureScheme ? secureScheme : webSchemes);
  curl_easy_setopt(handle, CURLOPT_PATH_AS_IS, 1L);
  curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(handle, CURLOPT_TCP_NODELAY, 1L);
  curl_easy_setopt(handle, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
  // The name's resolution cannot be interrupted: a transfer that is called off must not make the others wait for it.
  curl_easy_setopt(handle, CURLOPT_QUICK_EXIT, 1L);
  setTrustedAuthorities(handle, authorities_);
}

// A proxy is for what lies beyond this machine: it would look for a local model on its own.
bool Transfer::setAddress(const std::string& address) {
  if (curl_easy_setopt(handle_.get(), CURLOPT_URL, address.c_str()) != CURLE_OK) return false;
  return curl_easy_setopt(handle_.get(), CURLOPT_PROXY, isOnThisMachine(address.c_str()) ? "" : nullptr) == CURLE_OK;
}

// libcurl would follow by itself, but it keeps only the Authorization from strangers, and a key may travel in any
// header. Nothing that was sent encrypted is sent again in the open.
bool Transfer::followRedirection() {
  CURL* handle = handle_.get();
  const char* const target = redirectionTarget(handle);
  if (!target || redirections_ == mostRedirections) return false;
  ++redirections_;
  const std::string address{target};
  long status = 0;
  curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &status);
  if (becomesGet(status, request_.method)) {
    curl_easy_setopt(handle, CURLOPT_CUSTOMREQUEST, nullptr);
    curl_easy_setopt(handle, CURLOPT_HTTPGET, 1L);
  }
  const bool isStranger = !isSameOrigin(address.c_str(), request_.url.absoluteString().c_str());
  if (isStranger && !setHeaders(true)) return false;
  body_.clear();
  noteActivity();
  return setAddress(address);
}

void Transfer::setMessageOptions() {
  CURL* handle = handle_.get();
  if (request_.method == "HEAD") {
    curl_easy_setopt(handle, CURLOPT_NOBODY, 1L);
  } else if (request_.method != "GET" || !request_.body.empty()) {
    curl_easy_setopt(handle, CURLOPT_POST, 1L);
    curl_easy_setopt(handle, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request_.body.size()));
    curl_easy_setopt(handle, CURLOPT_POSTFIELDS, request_.body.data());  // read where it is
    if (request_.method != "POST") curl_easy_setopt(handle, CURLOPT_CUSTOMREQUEST, request_.method.c_str());
  }
  curl_easy_setopt(handle, CURLOPT_USERAGENT, "Tavelle/" TAVELLE_VERSION);
  curl_easy_setopt(handle, CURLOPT_ACCEPT_ENCODING, "");  // every one that libcurl can decode
  curl_easy_setopt(handle, CURLOPT_BUFFERSIZE, receiveBufferSize);
  // Something that is not HTTP at all comes back as a response without a status, as on the platform.
  curl_easy_setopt(handle, CURLOPT_HTTP09_ALLOWED, 1L);
}

void Transfer::setCallbacks() {
  CURL* handle = handle_.get();
  curl_easy_setopt(handle, CURLOPT_PRIVATE, this);
  curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &Transfer::onBody);
  curl_easy_setopt(handle, CURLOPT_WRITEDATA, this);
  curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, &Transfer::onHeader);
  curl_easy_setopt(handle, CURLOPT_HEADERDATA, this);
  curl_easy_setopt(handle, CURLOPT_XFERINFOFUNCTION, &Transfer::onProgress);
  curl_easy_setopt(handle, CURLOPT_XFERINFODATA, this);
  curl_easy_setopt(handle, CURLOPT_NOPROGRESS, 0L);
}

bool Transfer::setHeaders(bool toStranger) {
  CurlList list;
  const auto add = [&list](const std::string& line) {
    auto* longer = curl_slist_append(list.get(), line.c_str());
    if (!longer) return false;
    static_cast<void>(list.release());
    list.reset(longer);
    return true;
  };
  if (!add("Expect:")) return false;  // or a large body would wait a second for a go-ahead that few servers send
  for (const auto& [name, value] : request_.headers) {
    if (toStranger && curl_strequal(name.c_str(), "Content-Type") == 0) continue;
    if (!add(headerLine(name, value))) return false;
  }
  curl_easy_setopt(handle_.get(), CURLOPT_HTTPHEADER, list.get());
  headers_ = std::move(list);
  return true;
}

bool Transfer::append(const char* bytes, std::size_t count) {
  try {
    if (body_.empty()) {
      curl_off_t announced = -1;
      curl_easy_getinfo(handle_.get(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &announced);
      if (announced > 0) body_.reserve(static_cast<std::size_t>(std::min(announced, mostReserved)));
    }
    body_.append(bytes, count);
    return true;
  } catch (const std::exception&) {
    return false;  // no memory: the transfer fails, and nothing else
  }
}

std::size_t Transfer::onBody(char* bytes, std::size_t size, std::size_t count, void* transfer) {
  auto& self = *static_cast<Transfer*>(transfer);
  self.noteActivity();
  return self.append(bytes, size * count) ? size * count : 0;
}

std::size_t Transfer::onHeader(char*, std::size_t size, std::size_t count, void* transfer) {
  static_cast<Transfer*>(transfer)->noteActivity();
  return size * count;
}

int Transfer::onProgress(void* transfer, curl_off_t, curl_off_t received, curl_off_t, curl_off_t sent) {
  auto& self = *static_cast<Transfer*>(transfer);
  if (std::exchange(self.moved_, received + sent) != received + sent) self.noteActivity();
  return 0;
}

void Transfer::finish(CURLcode result) {
  if (result != CURLE_OK) {
    answer_(transferError(handle_.get(), result));
    return;
  }
  if (redirectionTarget(handle_.get())) {
    answer_(urlError(URLError::Code::httpTooManyRedirects));
    return;
  }
  long status = 0;
  curl_easy_getinfo(handle_.get(), CURLINFO_RESPONSE_CODE, &status);
  URLResponse response;
  if (status != 0) response.statusCode = static_cast<int>(status);
  answer_(URLResult{std::move(body_), response});
}

}  // namespace tavelle

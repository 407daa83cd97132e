#include "platform/linux/curl/TrustStore.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace tavelle {
namespace {

// "0a775a30.0", as OpenSSL looks a certificate up.
bool isHashedName(std::string_view name) {
  constexpr std::string_view hexDigits = "0123456789abcdef";
  return name.size() == 10 && name.ends_with(".0") && std::all_of(name.begin(), name.begin() + 8, [&](char c) {
           return hexDigits.find(c) != std::string_view::npos;
         });
}

bool holdsHashedCertificates(const char* folder) {
  if (!folder) return false;
  std::error_code error;
  const std::filesystem::directory_iterator entries{folder, error};
  return std::any_of(begin(entries), end(entries),
                     [](const auto& entry) { return isHashedName(entry.path().filename().native()); });
}

bool systemHasFolderOfCertificates(CURL* handle) {
  char* folder = nullptr;
  curl_easy_getinfo(handle, CURLINFO_CAPATH, &folder);
  static const bool has = holdsHashedCertificates(folder);
  return has;
}

}  // namespace

void setTrustedAuthorities(CURL* handle, const std::string& authorities) {
  if (authorities.empty()) {
    // The folder and the one big file hold the same. Out of the folder only the certificate that is needed is read; the
    // file costs 20 ms of processor time and a megabyte, with every new connection.
    if (systemHasFolderOfCertificates(handle)) curl_easy_setopt(handle, CURLOPT_CAINFO, nullptr);
    return;
  }
  std::error_code error;
  const bool isFolder = std::filesystem::is_directory(authorities, error);
  curl_easy_setopt(handle, CURLOPT_CAPATH, isFolder ? authorities.c_str() : nullptr);
  curl_easy_setopt(handle, CURLOPT_CAINFO, isFolder ? nullptr : authorities.c_str());
}

}  // namespace tavelle

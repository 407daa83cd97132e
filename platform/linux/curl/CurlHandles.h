#pragma once

#include <curl/curl.h>

#include <memory>

namespace tavelle {

struct CurlEasyCleanup {
  void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
struct CurlMultiCleanup {
  void operator()(CURLM* handle) const { curl_multi_cleanup(handle); }
};
struct CurlListFree {
  void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
struct CurlURLCleanup {
  void operator()(CURLU* handle) const { curl_url_cleanup(handle); }
};
struct CurlFree {
  void operator()(char* memory) const { curl_free(memory); }
};

// Owners of what libcurl hands out.
using CurlEasy = std::unique_ptr<CURL, CurlEasyCleanup>;
using CurlMulti = std::unique_ptr<CURLM, CurlMultiCleanup>;
using CurlList = std::unique_ptr<curl_slist, CurlListFree>;
using CurlURL = std::unique_ptr<CURLU, CurlURLCleanup>;
using CurlString = std::unique_ptr<char, CurlFree>;

}  // namespace tavelle

#pragma once

#include "platform/URLSession.h"

#include <curl/curl.h>

namespace tavelle {

// Why the transfer of `handle` ended with `result`, which is no success. The words hold nothing of the request but the
// host: keys travel in headers and in the URL's query.
URLError transferError(CURL* handle, CURLcode result);

}  // namespace tavelle

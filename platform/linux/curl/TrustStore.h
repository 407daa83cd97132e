#pragma once

#include <curl/curl.h>

#include <string>

namespace tavelle {

// Which certificate authorities the transfer of `handle` trusts: those in `authorities`, a PEM file or a folder of
// certificates named by their hashes; the system's where it is empty.
void setTrustedAuthorities(CURL* handle, const std::string& authorities);

}  // namespace tavelle

#pragma once

#include <filesystem>
#include <string>

namespace tavelle::tests {

// A certificate authority that nobody knows, and a certificate of it for 127.0.0.1; made by openssl for the life of
// this object.
class TestAuthority {
 public:
  TestAuthority();
  ~TestAuthority();
  TestAuthority(const TestAuthority&) = delete;
  TestAuthority& operator=(const TestAuthority&) = delete;

  // PEM files. The certificate is signed with its own key, and so is its own authority.
  std::string certificate() const { return folder_ / "certificate.pem"; }
  std::string key() const { return folder_ / "private-key"; }

  // The folder with both, in which the certificate is found by its hash too.
  std::string folder() const { return folder_; }

 private:
  std::filesystem::path folder_;
};

}  // namespace tavelle::tests

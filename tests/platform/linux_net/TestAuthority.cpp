#include "tests/platform/linux_net/TestAuthority.h"

#include <cstdlib>
#include <stdexcept>

namespace tavelle::tests {
namespace {

std::filesystem::path makeFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "tavelle-authority-XXXXXX").string();
  if (!mkdtemp(name.data())) throw std::runtime_error("no temporary folder");
  return name;
}

}  // namespace

TestAuthority::TestAuthority() : folder_(makeFolder()) {
  const std::string command =
      "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2 -subj /CN=127.0.0.1"
      " -addext subjectAltName=IP:127.0.0.1 -keyout '" +
      key() + "' -out '" + certificate() + "' 2>'" + (folder_ / "log").string() + "'";
  const std::string naming = "openssl rehash '" + folder() + "' 2>>'" + (folder_ / "log").string() + "'";
  if (std::system((command + " && " + naming).c_str()) != 0) throw std::runtime_error("openssl made no certificate");
}

TestAuthority::~TestAuthority() {
  std::error_code ignored;  // a temporary folder that stays behind fails no test
  std::filesystem::remove_all(folder_, ignored);
}

}  // namespace tavelle::tests

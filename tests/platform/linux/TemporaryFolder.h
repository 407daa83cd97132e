#pragma once

#include "platform/FatalError.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace tavelle::tests {

// A folder of the test's own, gone with the object.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "tavelle-test-XXXXXX").string();
    if (!mkdtemp(name.data())) fatalError("no temporary folder for a test");
    path_ = name;
  }
  ~TemporaryFolder() {
    std::error_code error;
    std::filesystem::remove_all(path_, error);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  operator const std::filesystem::path&() const { return path_; }  // NOLINT(google-explicit-constructor)

 private:
  std::filesystem::path path_;
};

inline std::string contentsOf(const std::filesystem::path& file) {
  std::ostringstream text;
  text << std::ifstream{file, std::ios::binary}.rdbuf();
  return text.str();
}

inline void write(const std::filesystem::path& file, const std::string& contents) {
  std::ofstream{file, std::ios::binary} << contents;
}

}  // namespace tavelle::tests

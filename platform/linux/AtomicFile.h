#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace tavelle {

// Where the symbolic links that `path` may be lead, whether there is anything or not.
std::filesystem::path followLinks(std::filesystem::path path);

// Reads the whole file into `contents`.
std::error_code readFile(const std::filesystem::path& path, std::string& contents);

// Replaces the file `path`, which is no symbolic link, so that at any moment, a power cut included, it holds either
// what it held or all of `contents`. Only its owner can read it. On an error the old file is untouched.
std::error_code replaceFile(const std::filesystem::path& path, std::string_view contents);

// Renames a file within its folder to the first of `name`.SUFFIX, `name`.SUFFIX.2, ... that nothing has. Empty on an
// error.
std::filesystem::path setAside(const std::filesystem::path& path, std::string_view suffix);

}  // namespace tavelle

#include "platform/linux/AtomicFile.h"

#include "platform/linux/FileDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstdio>

namespace tavelle {
namespace {

namespace fs = std::filesystem;

std::error_code lastError() {
  return {errno, std::generic_category()};
}

std::error_code writeAll(int fd, std::string_view contents) {
  while (!contents.empty()) {
    const ssize_t written = write(fd, contents.data(), contents.size());
    if (written >= 0) {
      contents.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EINTR) {
      return lastError();
    }
  }
  return {};
}

std::error_code writeSynced(const fs::path& path, std::string_view contents) {
  unlink(path.c_str());  // what an earlier process may have left when it was cut short
  const FileDescriptor file{open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600)};
  if (!file) return lastError();
  if (const auto error = writeAll(file.get(), contents)) return error;
  return fsync(file.get()) == 0 ? std::error_code{} : lastError();
}

}  // namespace

fs::path followLinks(fs::path path) {
  constexpr int mostLinks = 40;  // as many as the kernel follows
  std::error_code error;
  for (int links = 0; links < mostLinks && fs::is_symlink(path, error); ++links) {
    const auto target = fs::read_symlink(path, error);
    if (error) break;
    path = path.parent_path() / target;
  }
  return path;
}

std::error_code readFile(const fs::path& path, std::string& contents) {
  const FileDescriptor file{open(path.c_str(), O_RDONLY | O_CLOEXEC)};
  if (!file) return lastError();
  std::array<char, 64UL * 1024> piece;
  while (true) {
    const ssize_t count = read(file.get(), piece.data(), piece.size());
    if (count == 0) return {};
    if (count > 0) {
      contents.append(piece.data(), static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      return lastError();
    }
  }
}

std::error_code replaceFile(const fs::path& path, std::string_view contents) {
  auto temporary = path.parent_path() / ".";
  temporary += path.filename();
  temporary += ".new";
  if (const auto error = writeSynced(temporary, contents)) {
    unlink(temporary.c_str());
    return error;
  }
  if (rename(temporary.c_str(), path.c_str()) != 0) {
    const auto error = lastError();
    unlink(temporary.c_str());
    return error;
  }
  const FileDescriptor folder{open(path.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
  if (folder) fsync(folder.get());  // some file systems cannot; the new file is in place all the same
  return {};
}

fs::path setAside(const fs::path& path, std::string_view suffix) {
  const std::string name = path.string() + "." + std::string{suffix};
  std::string candidate = name;
  for (int number = 2; renameat2(AT_FDCWD, path.c_str(), AT_FDCWD, candidate.c_str(), RENAME_NOREPLACE) != 0;
       ++number) {
    if (errno != EEXIST) return {};
    candidate = name + "." + std::to_string(number);
  }
  return candidate;
}

}  // namespace tavelle

#include "platform/linux/UserDefaults.h"

#include "platform/linux/AtomicFile.h"
#include "platform/linux/DefaultsJSON.h"

#include <glib.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

namespace tavelle {
namespace {

void tell(const std::string& message) {
  std::fprintf(stderr, "Tavelle: %s\n", message.c_str());
}

bool isBlank(const std::string& text) {
  return text.find_first_not_of(" \t\r\n") == std::string::npos;
}

}  // namespace

std::filesystem::path JSONUserDefaults::standardFile() {
  return std::filesystem::path{g_get_user_config_dir()} / "tavelle" / "settings.json";
}

JSONUserDefaults::JSONUserDefaults(std::filesystem::path file) : file_(std::move(file)) {
  load();
}

void JSONUserDefaults::load() {
  std::string text;
  if (const auto error = readFile(file_, text)) {
    if (error == std::errc::no_such_file_or_directory) return;
    mayStore_ = false;
    tell("the settings in " + file_.string() + " cannot be read (" + error.message() +
         "); the defaults are used and nothing is stored");
    return;
  }
  if (isBlank(text)) return;
  if (auto values = parseSettings(text)) {
    values_ = std::move(*values);
  } else {
    keepAside();
  }
}

void JSONUserDefaults::keepAside() {
  const auto kept = setAside(followLinks(file_), "damaged");
  if (kept.empty()) {
    mayStore_ = false;
    tell("the settings in " + file_.string() + " are damaged and cannot be kept aside (" + std::strerror(errno) +
         "); the defaults are used and nothing is stored");
  } else {
    tell("the settings in " + file_.string() + " are damaged; they are kept as " + kept.string() +
         " and the defaults are used");
  }
}

std::optional<DefaultsValue> JSONUserDefaults::objectForKey(const std::string& key) const {
  const auto found = values_.find(key);
  if (found == values_.end()) return std::nullopt;
  return defaultsFromJSON(*found);
}

void JSONUserDefaults::setObject(DefaultsValue value, const std::string& key) {
  const auto found = values_.find(key);
  if (isStored_ && found != values_.end() && standsFor(*found, value)) return;
  values_[key] = jsonFromDefaults(std::move(value));
  store();
}

void JSONUserDefaults::removeObjectForKey(const std::string& key) {
  if (values_.erase(key) > 0 || !isStored_) store();
}

void JSONUserDefaults::store() {
  isStored_ = false;
  if (!mayStore_) return;
  const auto path = followLinks(file_);
  std::error_code error;
  const bool isNew = std::filesystem::create_directories(path.parent_path(), error);
  if (isNew) std::filesystem::permissions(path.parent_path(), std::filesystem::perms::owner_all, error);
  if (!error) error = replaceFile(path, settingsText(values_));
  isStored_ = !error;
  if (error && !hasToldOfFailure_) tell("the settings cannot be stored in " + path.string() + ": " + error.message());
  hasToldOfFailure_ = static_cast<bool>(error);
}

}  // namespace tavelle

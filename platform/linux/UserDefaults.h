#pragma once

#include "platform/UserDefaults.h"

#include <nlohmann/json.hpp>

#include <filesystem>

namespace tavelle {

// The defaults as one JSON file, made to be edited by hand as well: every change replaces it as a whole, and keeps what
// else it holds and the order of it. It is read once.
//
// Text, numbers and truth values are themselves; a number is whole or a fraction by how it is written. Data are the
// list or object that they are the compact JSON text of, else {"$data": TEXT} where they are UTF-8, else {"$base64":
// TEXT}.
//
// Messages about the file go to standard error. A file that is no JSON object is kept aside; one that cannot be read is
// left as it is, and nothing is stored.
class JSONUserDefaults : public UserDefaults {
 public:
  // The file in the person's configuration folder.
  static std::filesystem::path standardFile();

  explicit JSONUserDefaults(std::filesystem::path file);

  std::optional<DefaultsValue> objectForKey(const std::string& key) const override;
  void setObject(DefaultsValue value, const std::string& key) override;
  void removeObjectForKey(const std::string& key) override;

 private:
  using JSON = nlohmann::ordered_json;

  void load();
  void keepAside();
  void store();

  std::filesystem::path file_;
  JSON values_ = JSON::object();
  bool mayStore_ = true;
  bool isStored_ = true;  // whether the file holds values_
  bool hasToldOfFailure_ = false;
};

}  // namespace tavelle

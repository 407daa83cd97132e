#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>

namespace tavelle {

// An image from the application's resources, as the platform holds it.
class Image {
 public:
  virtual ~Image() = default;

  // A template image is a shape only: the panel gives it the colour that can be read there.
  virtual void setTemplate(bool isTemplate) = 0;
};

// A value of the information dictionary. What is neither a string, a number nor a boolean is not handed over.
using InfoValue = std::variant<std::string, double, bool>;

// The main bundle (NSBundle, NSImage). Linux: the folder share/tavelle beside the program's bin folder.
class Bundle {
 public:
  virtual ~Bundle() = default;

  virtual std::optional<InfoValue> objectForInfoDictionaryKey(const std::string& key) = 0;

  // Null where the bundle has no such image.
  virtual std::shared_ptr<Image> imageNamed(const std::string& name) = 0;
};

}  // namespace tavelle

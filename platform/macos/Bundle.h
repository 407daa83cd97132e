#pragma once

#import <AppKit/AppKit.h>

#include "platform/Bundle.h"

namespace tavelle {

class MacImage : public Image {
 public:
  explicit MacImage(NSImage* image) : image_(image) {}

  void setTemplate(bool isTemplate) override;
  NSImage* image() const { return image_; }

 private:
  NSImage* image_;
};

// NSBundle.mainBundle, and NSImage for its images.
class MacBundle : public Bundle {
 public:
  std::optional<InfoValue> objectForInfoDictionaryKey(const std::string& key) override;
  std::shared_ptr<Image> imageNamed(const std::string& name) override;
};

}  // namespace tavelle

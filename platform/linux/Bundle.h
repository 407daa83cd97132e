#pragma once

#include "platform/Bundle.h"

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace tavelle {

// An icon of the bundle: the name by which a panel finds it in the bundle's icon folder, and its shape in the sizes
// that panels show, for those that look up no names.
class LinuxImage : public Image {
 public:
  // A square of `size` by `size` pixels, one byte of opacity each, row by row from the top.
  struct Mask {
    int size;
    std::string alpha;
  };

  LinuxImage(std::string iconName, std::filesystem::path folder, std::vector<Mask> masks);

  // The icon files are template images whatever they are called: panels that give them a colour go by their name.
  void setTemplate(bool) override {}

  const std::string& iconName() const { return iconName_; }
  const std::filesystem::path& folder() const { return folder_; }
  const std::vector<Mask>& masks() const { return masks_; }

 private:
  std::string iconName_;
  std::filesystem::path folder_;
  std::vector<Mask> masks_;
};

// The folder share/tavelle beside the program's own folder: Info.json and icons/.
class LinuxBundle : public Bundle {
 public:
  // That folder, by where this process's program is.
  static std::filesystem::path standardFolder();

  explicit LinuxBundle(std::filesystem::path folder);

  std::optional<InfoValue> objectForInfoDictionaryKey(const std::string& key) override;
  std::shared_ptr<Image> imageNamed(const std::string& name) override;

 private:
  const std::map<std::string, InfoValue>& infoDictionary();

  std::filesystem::path folder_;
  std::optional<std::map<std::string, InfoValue>> infoDictionary_;
};

}  // namespace tavelle

#include "platform/linux/Bundle.h"

#include "platform/linux/AtomicFile.h"

#include <nlohmann/json.hpp>

#include <sstream>
#include <utility>

namespace tavelle {
namespace {

// The sizes that tools/render-icons.py renders.
constexpr int maskSizes[] = {16, 22, 24, 32, 48};

// Reads a binary graymap of 8 bits (netpbm's PGM, "P5"), a square of `size`.
std::optional<LinuxImage::Mask> readMask(const std::filesystem::path& file, int size) {
  std::string contents;
  if (readFile(file, contents)) return std::nullopt;
  std::istringstream header{contents};
  std::string magic;
  int width = 0;
  int height = 0;
  int largest = 0;
  header >> magic >> width >> height >> largest;
  header.get();  // the one blank before the pixels
  const auto count = static_cast<std::size_t>(size) * static_cast<std::size_t>(size);
  if (!header || magic != "P5" || width != size || height != size || largest != 255) return std::nullopt;
  const auto start = static_cast<std::size_t>(header.tellg());
  if (contents.size() - start != count) return std::nullopt;
  return LinuxImage::Mask{size, contents.substr(start)};
}

std::optional<InfoValue> infoValue(const nlohmann::json& value) {
  if (value.is_string()) return value.get<std::string>();
  if (value.is_boolean()) return value.get<bool>();
  if (value.is_number()) return value.get<double>();
  return std::nullopt;
}

}  // namespace

LinuxImage::LinuxImage(std::string iconName, std::filesystem::path folder, std::vector<Mask> masks)
    : iconName_(std::move(iconName)), folder_(std::move(folder)), masks_(std::move(masks)) {}

std::filesystem::path LinuxBundle::standardFolder() {
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
  return program.parent_path().parent_path() / "share" / "tavelle";
}

LinuxBundle::LinuxBundle(std::filesystem::path folder) : folder_(std::move(folder)) {}

std::optional<InfoValue> LinuxBundle::objectForInfoDictionaryKey(const std::string& key) {
  const auto& dictionary = infoDictionary();
  const auto found = dictionary.find(key);
  if (found == dictionary.end()) return std::nullopt;
  return found->second;
}

std::shared_ptr<Image> LinuxBundle::imageNamed(const std::string& name) {
  const auto folder = folder_ / "icons";
  std::vector<LinuxImage::Mask> masks;
  for (const int size : maskSizes) {
    if (auto mask = readMask(folder / (name + "-" + std::to_string(size) + ".pgm"), size))
      masks.push_back(std::move(*mask));
  }
  const std::string iconName = name + "-symbolic";
  std::error_code error;
  if (masks.empty() && !std::filesystem::exists(folder / (iconName + ".svg"), error)) return nullptr;
  return std::make_shared<LinuxImage>(iconName, folder, std::move(masks));
}

const std::map<std::string, InfoValue>& LinuxBundle::infoDictionary() {
  if (!infoDictionary_) {
    infoDictionary_.emplace();
    std::string text;
    readFile(folder_ / "Info.json", text);
    const auto json = nlohmann::json::parse(text, nullptr, false);
    if (json.is_object()) {
      for (const auto& [key, value] : json.items()) {
        if (auto info = infoValue(value)) infoDictionary_->emplace(key, std::move(*info));
      }
    }
  }
  return *infoDictionary_;
}

}  // namespace tavelle

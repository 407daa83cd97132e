#include "Pictures.h"

#include "benchmarks/programs/shared/Clock.h"

#include <algorithm>
#include <cstring>

namespace tavelle::bench {
namespace {

// The server keeps each in full. What is drawn past so many is seen in the last picture only.
constexpr std::size_t most = 60;

std::size_t difference(const std::vector<std::uint32_t>& one, const std::vector<std::uint32_t>& other) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < one.size(); ++i) count += one[i] != other[i] ? 1 : 0;
  return count;
}

}  // namespace

// Damage of the root is that of all windows in it.
Pictures::Pictures(const Display& display)
    : display_(display),
      screen_(*xcb_setup_roots_iterator(xcb_get_setup(display)).data),
      copying_(xcb_generate_id(display)),
      damageEvent_(xcb_get_extension_data(display, &xcb_damage_id)->first_event) {
  const std::uint32_t withWindows = XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS;
  xcb_create_gc(display_, copying_, display_.root(), XCB_GC_SUBWINDOW_MODE, &withWindows);
  const XcbReply<xcb_damage_query_version_reply_t> version{
      xcb_damage_query_version_reply(display_, xcb_damage_query_version(display_, 1, 1), nullptr)};
  xcb_damage_create(display_, xcb_generate_id(display_), display_.root(), XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
}

void Pictures::begin() {
  isLooking_ = true;
  take();
}

void Pictures::handle(const xcb_generic_event_t& event) {
  if ((event.response_type & 0x7f) == damageEvent_ + XCB_DAMAGE_NOTIFY) isDrawn_ = isLooking_;
}

bool Pictures::takeIfDrawn() {
  if (!isDrawn_ || pictures_.size() >= most) return false;
  take();
  return true;
}

// The time is that after the copy: what it shows was there then.
void Pictures::take() {
  isDrawn_ = false;
  const auto pixmap = xcb_generate_id(display_);
  xcb_create_pixmap(display_, screen_.root_depth, pixmap, display_.root(), screen_.width_in_pixels,
                    screen_.height_in_pixels);
  xcb_copy_area(display_, display_.root(), pixmap, copying_, 0, 0, 0, 0, screen_.width_in_pixels,
                screen_.height_in_pixels);
  display_.sync();
  pictures_.push_back({now(), pixmap});
}

std::vector<Pictures::Sight> Pictures::end(Area area) {
  isLooking_ = false;
  take();
  const auto first = pixels(pictures_.front().pixmap, area);
  const auto last = pixels(pictures_.back().pixmap, area);
  std::vector<Sight> sights;
  for (const auto& [at, pixmap] : pictures_) {
    const auto shown = pixels(pixmap, area);
    sights.push_back({at, difference(first, shown), difference(shown, last)});
    xcb_free_pixmap(display_, pixmap);
  }
  pictures_.clear();
  display_.flush();
  return sights;
}

Pictures::Pixels Pictures::pixels(xcb_pixmap_t pixmap, Area area) const {
  constexpr std::uint32_t allPlanes = ~0U;
  const XcbReply<xcb_get_image_reply_t> image{xcb_get_image_reply(
      display_,
      xcb_get_image(display_, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, area.x, area.y, area.width, area.height, allPlanes),
      nullptr)};
  Pixels pixels(std::size_t{area.width} * area.height);
  if (image) {
    const auto size = static_cast<std::size_t>(xcb_get_image_data_length(image.get()));
    std::memcpy(pixels.data(), xcb_get_image_data(image.get()), std::min(size, pixels.size() * sizeof pixels[0]));
  }
  return pixels;
}

}  // namespace tavelle::bench

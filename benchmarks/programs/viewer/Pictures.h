#pragma once

#include "benchmarks/programs/shared/Display.h"

#include <xcb/damage.h>

#include <cstdint>
#include <vector>

namespace tavelle::bench {

// The screen as it looked after each time that anything on it was drawn.
class Pictures {
 public:
  struct Area {
    std::int16_t x;
    std::int16_t y;
    std::uint16_t width;
    std::uint16_t height;
  };
  // What an area showed, and when that could be seen. In pixels that differ from the first picture and from the last.
  struct Sight {
    std::int64_t at;
    std::size_t changed;
    std::size_t left;
  };

  explicit Pictures(const Display& display);

  // From now on. The picture of this moment is the first.
  void begin();

  void handle(const xcb_generic_event_t& event);
  // Where the events told of something drawn. Once all of them were handled.
  bool takeIfDrawn();

  // Ends it with a last picture.
  std::vector<Sight> end(Area area);

 private:
  struct Picture {
    std::int64_t at;
    xcb_pixmap_t pixmap;
  };
  using Pixels = std::vector<std::uint32_t>;

  void take();
  Pixels pixels(xcb_pixmap_t pixmap, Area area) const;

  const Display& display_;
  const xcb_screen_t& screen_;
  xcb_gcontext_t copying_;
  std::uint8_t damageEvent_;
  std::vector<Picture> pictures_;
  bool isLooking_ = false;
  bool isDrawn_ = false;  // since the last picture
};

}  // namespace tavelle::bench

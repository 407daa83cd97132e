#pragma once

#include "benchmarks/programs/shared/Display.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tavelle::bench {

// What the person had copied before: owned by an application that hands it over as toolkits do, large values in pieces.
class Clipboard {
 public:
  using Contents = std::vector<std::pair<std::string, std::string>>;  // type, bytes; in order

  struct Loss {
    int types = 0;          // that are missing, changed, or not in their place
    std::size_t bytes = 0;  // that those types had
  };

  explicit Clipboard(const Display& display);

  void own(Contents contents);
  std::size_t size() const;

  // Serves requests and pieces.
  void handle(const xcb_generic_event_t& event);

  // Reads all that the present owner has and compares it with what was owned last. `serve` is called with the other
  // events that come meanwhile.
  Loss compare(const std::function<void(const xcb_generic_event_t&)>& serve) const;

 private:
  struct Transfer {
    const std::string* bytes;
    xcb_atom_t type;
    std::size_t offset;
  };
  using Serve = std::function<void(const xcb_generic_event_t&)>;

  void answer(const xcb_selection_request_event_t& request);
  bool offer(xcb_window_t requestor, xcb_atom_t property, xcb_atom_t target);
  void sendPiece(xcb_window_t requestor, xcb_atom_t property);
  bool waitFor(std::uint8_t type, const std::function<bool(const xcb_generic_event_t&)>& isIt,
               const Serve& serve) const;
  std::string read(xcb_atom_t target, const Serve& serve) const;
  std::string readPieces(const Serve& serve) const;
  std::string takeProperty(xcb_atom_t* type = nullptr) const;

  const Display& display_;
  xcb_atom_t clipboard_;
  xcb_atom_t targets_;
  xcb_atom_t incr_;
  xcb_atom_t place_;
  Contents contents_;
  std::vector<xcb_atom_t> types_;
  std::map<std::pair<xcb_window_t, xcb_atom_t>, Transfer> transfers_;
};

}  // namespace tavelle::bench

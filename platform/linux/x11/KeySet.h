#pragma once

#include <bitset>
#include <cstdint>

namespace tavelle::x11 {

// A set of X keycodes.
using KeySet = std::bitset<256>;

// Unpacks the bit field in which the protocol tells the keys that are down.
template <typename Bytes>
KeySet keySetOf(const Bytes& bytes) {
  KeySet set;
  for (std::size_t key = 0; key < set.size(); ++key) set[key] = (bytes[key / 8] >> (key % 8) & 1) != 0;
  return set;
}

}  // namespace tavelle::x11

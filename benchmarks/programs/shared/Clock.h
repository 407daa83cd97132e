#pragma once

#include <cstdint>
#include <ctime>

namespace tavelle::bench {

// Nanoseconds of CLOCK_MONOTONIC, the one clock of all programs of the bench.
inline std::int64_t now() {
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC, &time);
  return time.tv_sec * INT64_C(1'000'000'000) + time.tv_nsec;
}

}  // namespace tavelle::bench

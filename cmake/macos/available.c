// What the compiler calls for `@available`; the compiler's own library of such functions is not at hand on Linux.
#include <stdint.h>

struct PlatformVersion {
  uint32_t platform;
  uint32_t version;
};

// libSystem's.
extern _Bool _availability_version_check(uint32_t count, struct PlatformVersion* versions);

int32_t __isPlatformVersionAtLeast(uint32_t platform, uint32_t major, uint32_t minor, uint32_t patch) {
  struct PlatformVersion wanted = {platform, (major & 0xffff) << 16 | (minor & 0xff) << 8 | (patch & 0xff)};
  return _availability_version_check(1, &wanted);
}

// How do I keep a key out of freed memory?
//
// Set `secure`, and reserve before the key goes in: the destructor wipes the bytes in use, but a buffer that has to
// grow leaves its old block behind unwiped.
#include <cstdio>

#include "varnik/Varnik.h"
#include "varnik/interop/Stream.h"

int main() {
  DataBuffer key;
  key.secure = 1;
  if (!key.ensureBuffer(32)) return 1;
  const u8* block = key.getData2();
  if (!RandomSource::generateBytes(32, key)) return 1;
  std::printf("%u bytes, %s\n", key.size(), key.getData2() == block ? "not moved" : "moved: an unwiped copy is left");

  char shown[kVkDescribeRoom];
  const u32 n = vk_describe(key, shown);
  std::printf("printed as: %.*s\n", static_cast<int>(n), shown);
  return 0;  // wiped here
}

// Prints:
//   32 bytes, not moved
//   printed as: 32 bytes, secure

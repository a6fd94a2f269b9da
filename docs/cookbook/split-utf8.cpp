// How do I cut UTF-8 into blocks without splitting a character?
//
// `numPartialTrailingUtf8Bytes` says how many bytes at the end wait for the rest of their character: keep those for the
// next block.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  const char* const stream = "na\xC3\xAFve \xE2\x82\xAC 5";
  DataBuffer pending;
  for (u32 i = 0; i < vk_strlen(stream); i += 4) {
    const u32 left = vk_strlen(stream) - i;
    pending.append(stream + i, left < 4 ? left : 4);
    const u32 whole = pending.size() - pending.numPartialTrailingUtf8Bytes();
    std::printf("[%.*s]", static_cast<int>(whole), reinterpret_cast<const char*>(pending.getData2()));
    pending.removeHead(whole);
  }
  std::printf(" %u left\n", pending.size());
  return 0;
}

// Prints:
//   [naï][ve ][€ 5] 0 left

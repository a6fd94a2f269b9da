// How do I let a function of another library write into a buffer?
//
// `getAppendPtr` makes room and says where; `addToSize` counts what was really written. The pointer holds until the
// buffer changes.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer line;
  line.appendStr("pi is ");
  constexpr u32 kMost = 40;
  u8* at = line.getAppendPtr(kMost);
  if (!at) return 1;
  const int n = std::snprintf(reinterpret_cast<char*>(at), kMost, "%.4f", 3.14159265);
  line.addToSize(static_cast<u32>(n));
  std::printf("%.*s\n", static_cast<int>(line.size()), reinterpret_cast<const char*>(line.getData2()));
  return 0;
}

// Prints:
//   pi is 3.1416

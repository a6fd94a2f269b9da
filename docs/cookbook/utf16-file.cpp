// How do I read a text file that may be UTF-8 or UTF-16 of either order?
//
// `detectObviousCodePage` looks for a byte-order mark and for the zero bytes that UTF-16 of Western text is full of;
// -1 means that nothing is obvious. The converter drops the mark, and answers false where it had to repair something.
#include <cstdio>

#include "varnik/Varnik.h"

static void print(const DataBuffer& file) {
  const s32 found = file.detectObviousCodePage();
  DataBuffer text;
  LogNull log;
  _vkEncodingConvert converter;
  const bool clean = converter.EncConvert(found < 0 ? 65001 : found, 65001, file.getData2(), file.size(), text, log);
  std::printf("%5d, %s: %.*s\n", found, clean ? "clean" : "repaired", static_cast<int>(text.size()),
              reinterpret_cast<const char*>(text.getData2()));
}

int main() {
  for (const char* hex : {"fffe 6a00 e500", "feff 006a 00e5", "006a 00e5", "6ac3a5", "efbbbf 6ac3a5", "6ae5"}) {
    DataBuffer file;
    if (!file.appendEncoded(hex, "hex")) return 1;
    print(file);
  }
  return 0;
}

// Prints:
//    1200, clean: jå
//    1201, clean: jå
//    1201, clean: jå
//      -1, clean: jå
//   65001, clean: jå
//      -1, repaired: j�

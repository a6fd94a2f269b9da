// How do I replace bytes, all of them or in text of any letter case?
//
// `replaceAllOccurances` goes left to right, and what it inserted is not searched again. For UTF-16 content there is a
// form that ignores letter case.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer packet;
  if (!packet.appendEncoded("01 ff ff 02 ff 03", "hex")) return 1;
  const u8 find[] = {0xFF}, with[] = {0xFF, 0x00};
  const u32 n = packet.replaceAllOccurances(find, 1, with, 2);
  StringBuffer hex;
  packet.toHexString(hex);
  std::printf("%u replaced: %s\n", n, hex.getString());

  XString text, what, by;
  DataBuffer units;
  if (!text.setFromUtf8("Colour and COLOUR") || !what.setFromUtf8("colour") || !by.setFromUtf8("color")) return 1;
  if (!text.getUtf16_le(false, units)) return 1;
  const u32 m = units.replaceAllOccurancesUtf16NoCase(what, by);
  StringBuffer utf8;
  units.cvUnicodeToUtf8(utf8);
  std::printf("%u replaced: %s\n", m, utf8.getString());
  return 0;
}

// Prints:
//   3 replaced: 01FF00FF0002FF0003
//   2 replaced: color and color

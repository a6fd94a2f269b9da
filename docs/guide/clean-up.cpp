// The code of the page clean-up.md.
#include <cstdio>

#include "varnik/Varnik.h"

static void print(const DataBuffer& b) {
  std::printf("%.*s\n", static_cast<int>(b.size()), reinterpret_cast<const char*>(b.getData2()));
}

static void mail() {
  DataBuffer b;
  b.appendStr("one\r\n..two\r\n");
  b.processRawPopMime();
  std::printf("%u bytes; a line over 4: %d; a bare CR or LF: %d\n", b.size(), b.hasLineLonger(4), b.containsBareCRLF());
}

static void bytes() {
  DataBuffer b;
  b.appendStr("na\xC3\xAFve;\tplain;\x1B[1mbold\x1B[0m");
  b.stripTerminalColorCodes();
  b.drop_non_usascii();
  b.removeByteValue('\t');
  b.replaceChar(';', ',');
  print(b);
}

static void accents() {
  DataBuffer b;
  b.appendStr("cre\xCC\x80me, Bjo\xCC\x88rn");
  const u32 before = b.size();
  b.consumeUtf8CombiningMarks();
  print(b);
  std::printf("%u bytes, before %u\n", b.size(), before);
}

static void utf16() {
  DataBuffer b;
  XString text;
  if (!text.setFromUtf8("B\xC3\xA4r-\xC3\x89t\xC3\xA9") || !text.getUtf16_le(false, b)) return;
  b.removeCharOccurancesW('-');
  b.toUppercaseW();
  StringBuffer utf8;
  b.cvUnicodeToUtf8(utf8);
  std::printf("%s\n", utf8.getString());
}

int main() {
  mail();
  bytes();
  accents();
  utf16();
  return 0;
}

// Prints:
//   11 bytes; a line over 4: 0; a bare CR or LF: 0
//   nave,plain,bold
//   crème, Björn
//   14 bytes, before 16
//   BÄRÉTÉ

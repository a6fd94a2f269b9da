// Which encoding is shortest, and which is safest to read out?
//
// The more characters an alphabet has, the shorter the text; the fewer, the less there is to mistake.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer key;
  for (u32 i = 0; i < 32; ++i) key.appendChar(static_cast<u8>(i * 37 + 11));
  for (const char* name : {"hex", "base32", "base45", "base58", "base64url", "ascii85"}) {
    StringBuffer text;
    if (!key.encodeDB(name, text)) return 1;
    std::printf("%-10s %2u characters  %.24s...\n", name, text.getSize(), text.getString());
  }
  return 0;
}

// Prints:
//   hex        64 characters  0B30557A9FC4E90E33587DA2...
//   base32     56 characters  BMYFK6U7YTUQ4M2YPWRMP3AR...
//   base45     48 characters  TI1C A+8K$KT4M6W*FFCP-72...
//   base58     43 characters  kgERWXbLfq6MHcWLd86a5dpm...
//   base64url  43 characters  CzBVep_E6Q4zWH2ix-wRNluA...
//   ascii85    40 characters  $SYS,T>]t(1K]("a6XBr>C`Q...

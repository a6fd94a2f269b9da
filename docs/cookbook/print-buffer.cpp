// How do I print a buffer while I look for a fault?
//
// `varnik/interop/Stream.h` prints a string as text and a buffer as its size and first bytes. Of a `secure` buffer it
// prints the size alone. `varnik/interop/Fmt.h` does the same for fmt, and gdb has its own printer.
#include "varnik/interop/Stream.h"

#include <iostream>

int main() {
  DataBuffer bytes, key;
  bytes.appendStr("hello");
  key.appendRandomBytes(32);
  key.secure = 1;
  std::cout << bytes << '\n' << key << '\n' << StringBuffer("a text") << '\n';
  return 0;
}

// Prints:
//   5 bytes: 68 65 6c 6c 6f
//   32 bytes, secure
//   a text

// How do I pad data for a block cipher, and take the padding off again?
//
// Scheme 0 is PKCS #7. Check that the message is genuine before you take padding off: what an attacker can learn from
// padding errors alone has broken many protocols.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer data;
  LogNull log;
  data.appendStr("abc");
  const u32 n = data.padForEncryption(0, 8, log);
  StringBuffer hex;
  data.toHexString(hex);
  std::printf("%u bytes of padding: %s\n", n, hex.getString());

  // ... encrypt, send, receive, check the authentication tag, decrypt ...
  if (!data.unpadAfterDecryption(0, 8, log)) return 1;
  std::printf("%u bytes\n", data.size());
  return 0;
}

// Prints:
//   5 bytes of padding: 6162630505050505
//   3 bytes

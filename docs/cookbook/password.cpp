// How do I hold a password for hours without it lying about in memory?
//
// `SecretString` keeps it encrypted. The key is a buffer of yours, filled with random bytes by the first secret; keep
// it elsewhere than the holder. What comes out is wiped when it goes.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer key;
  SecretString password;
  LogText log;
  if (!password.setSecString(key, "open sesame", log)) return 1;
  std::printf("held: %u bytes of ciphertext, key of %u\n", password.getEncryptedSize(), key.size());

  StringBuffer clear;
  if (!password.getSecString(key, clear, log)) return 1;
  std::printf("%u characters for a moment\n", clear.getSize());

  DataBuffer otherKey;
  otherKey.appendRandomBytes(32);
  const bool given = password.getSecString(otherKey, clear, log);
  std::printf("under another key: %s, %u characters\n", given ? "given" : "refused", clear.getSize());
  return 0;
}

// Prints:
//   held: 39 bytes of ciphertext, key of 32
//   11 characters for a moment
//   under another key: refused, 0 characters

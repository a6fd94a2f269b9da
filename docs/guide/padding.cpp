// The code of the page padding.md.
#include <cstdio>

#include "varnik/Varnik.h"

static void schemes() {
  LogNull log;
  for (const s32 scheme : {0, 3, 4}) {
    DataBuffer b;
    b.appendStr("abc");
    const u32 n = b.padForEncryption(scheme, 8, log);
    StringBuffer hex;
    b.toHexString(hex);
    std::printf("scheme %d: %u added: %s\n", scheme, n, hex.getString());
  }
}

static bool receive(DataBuffer& key, const DataBuffer& sealed, DataBuffer& message, LogBase& log) {
  // 1. Is it genuine? A message that is not ends here, whatever its padding looks like.
  if (!SymmetricCrypt::decryptBytes(256, nullptr, key, sealed.getData2(), sealed.size(), message, log)) return false;
  // 2. Only then look at the padding.
  return message.unpadAfterDecryption(0, 16, log);
}

static void authenticateFirst() {
  LogNull log;
  DataBuffer key, message, sealed, received;
  message.appendStr("attack at dawn");
  message.padForEncryption(0, 16, log);
  if (!key.appendRandomBytes(32)) return;
  if (!SymmetricCrypt::encryptBytes(256, nullptr, key, message.getData2(), message.size(), sealed, log)) return;
  const bool genuine = receive(key, sealed, received, log);
  std::printf("%d: %u bytes\n", genuine, received.size());
  *sealed.getDataAt2(13) ^= 1;
  std::printf("changed: %d\n", receive(key, sealed, received, log));
}

int main() {
  schemes();
  authenticateFirst();
  return 0;
}

// Prints:
//   scheme 0: 5 added: 6162630505050505
//   scheme 3: 5 added: 6162630000000000
//   scheme 4: 5 added: 6162632020202020
//   1: 14 bytes
//   changed: 0

// How do I encrypt bytes so that a change to them is noticed?
//
// `SymmetricCrypt` is AES-256-GCM with a fresh random IV: the ciphertext is 28 bytes longer. A ciphertext that was
// touched gives false and not one byte.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  const u8 message[] = {'a', 't', ' ', 'd', 'a', 'w', 'n'};
  DataBuffer key, sealed, opened;
  LogNull log;
  if (!RandomSource::generateBytes(32, key)) return 1;
  if (!SymmetricCrypt::encryptBytes(256, nullptr, key, message, 7, sealed, log)) return 1;
  std::printf("%u bytes sealed\n", sealed.size());

  if (!SymmetricCrypt::decryptBytes(256, nullptr, key, sealed.getData2(), sealed.size(), opened, log)) return 1;
  std::printf("opened: %.*s\n", static_cast<int>(opened.size()), reinterpret_cast<const char*>(opened.getData2()));

  *sealed.getDataAt2(20) ^= 1;
  const bool ok = SymmetricCrypt::decryptBytes(256, nullptr, key, sealed.getData2(), sealed.size(), opened, log);
  std::printf("one bit changed: %s, %u bytes\n", ok ? "opened" : "refused", opened.size());
  return 0;
}

// Prints:
//   35 bytes sealed
//   opened: at dawn
//   one bit changed: refused, 0 bytes

// How do I check the padding of a TLS record?
//
// `verifyTlsPadding` wants the last byte n to stand behind n more bytes of the same value (RFC 5246), and logs what is
// wrong otherwise. The buffer is not changed. Where an attacker can watch the time or the answer, check the record's
// authentication code all the same.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  for (const char* hex : {"aabbcc 0202 02", "aabbcc 0102 02", "09"}) {
    DataBuffer record;
    LogText log;
    if (!record.appendEncoded(hex, "hex")) return 1;
    std::printf("%s\n", record.verifyTlsPadding(log) ? "well formed" : "malformed");
  }
  return 0;
}

// Prints:
//   well formed
//   malformed
//   malformed

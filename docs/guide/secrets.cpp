// The code of the page secrets.md.
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>

#include "varnik/Varnik.h"

static void holders() {
  LogText log;
  DataBuffer key;     // the caller's: filled with 32 random bytes by the first secret
  SecretData holder;  // holds ciphertext only
  const u8 pin[] = {1, 2, 3, 4};
  if (!holder.setSecret(key, pin, 4, log)) return;

  DataBuffer plain;
  if (!holder.getSecret(key, plain, log)) return;
  std::printf("%u bytes held as %u; wiped when it goes: %d\n", plain.size(), holder.getEncryptedSize(), plain.secure);
}

static void reserveFirst() {
  DataBuffer secret;
  secret.secure = 1;
  if (!secret.ensureBuffer(64)) return;
  secret.appendStr("no reallocation from here to 64 bytes");
  secret.secureClear();  // wipes and empties; the block is kept for the next one
  std::printf("%u of %u bytes\n", secret.size(), secret.getBufSize());
}

static bool keepOutOfCoreDumps() {
  const rlimit none = {0, 0};
  return setrlimit(RLIMIT_CORE, &none) == 0 && prctl(PR_SET_DUMPABLE, 0, 0, 0, 0) == 0;
}

static void useInChild(DataBuffer& key) {
  key.secureClearWithDeallocate();  // a child that does not need the key wipes its copy first
}

int main() {
  holders();
  reserveFirst();
  if (keepOutOfCoreDumps()) std::printf("no core dump\n");
  DataBuffer key;
  key.appendStr("key");
  useInChild(key);
  std::printf("%u bytes\n", key.size());
  return 0;
}

// Prints:
//   4 bytes held as 32; wiped when it goes: 1
//   0 of 64 bytes
//   no core dump
//   0 bytes

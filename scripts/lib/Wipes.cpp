// Looks into every block at the moment of its release for what a secret was. The mark is known only masked.
#include <malloc.h>

#include <cstdio>
#include <cstdlib>
#include <new>

#include "varnik/Varnik.h"

namespace {

constexpr u32 kMark = 16;
volatile u8 mask = 0x5A;
u32 marksReleased = 0;

u8 markByte(u32 i) {
  return static_cast<u8>((0x30 + 7 * i) ^ mask);
}

void look(const void* block) {
  const auto* const p = static_cast<const volatile u8*>(block);
  const std::size_t n = malloc_usable_size(const_cast<void*>(block));
  for (std::size_t at = 0; at + kMark <= n; ++at) {
    u32 i = 0;
    while (i < kMark && p[at + i] == markByte(i)) ++i;
    if (i == kMark) ++marksReleased;
  }
}

void release(void* block) {
  if (!block) return;
  look(block);
  std::free(block);
}

void* take(std::size_t n) {
  return std::malloc(n ? n : 1);
}

DataBuffer secret(bool secure) {
  DataBuffer b;
  b.secure = secure ? 1 : 0;
  b.ensureBuffer(100);
  for (u32 i = 0; i < kMark; ++i) b.appendChar(static_cast<char>(markByte(i)));
  return b;
}

// Each way in which a secret's block is released; the caller's own buffers are `secure`.
void useSecrets() {
  LogNull log;
  DataBuffer key, wrongKey, out;
  wrongKey.append("wrong", 5);
  {
    DataBuffer plain = secret(true), moved = std::move(plain), copy = moved, emptied = moved;
    emptied.secureClearWithDeallocate();
    copy = DataBuffer();
    SecretData data, other;
    data.setSecretFromBuffer(key, moved);
    data.getSecret(key, out, log);
    data.getSecret(wrongKey, out, log);
    other.copySecretFrom(wrongKey, key, data);
    DataBuffer cipher;
    SymmetricCrypt::encryptBytes(256, nullptr, key, moved.getData2(), kMark, cipher, log);
    *cipher.getDataAt2(cipher.size() - 1) ^= 1;
    SymmetricCrypt::decryptBytes(256, nullptr, key, cipher.getData2(), cipher.size(), out, log);
    StringBuffer text;
    SecretString string;
    moved.appendChar('\0');
    string.setSecString(key, reinterpret_cast<const char*>(moved.getData2()), log);
    string.getSecString(key, text, log);
    text.appendCharN('x', 1000);
    XString wide;
    string.getSecStringX(key, wide, log);
  }
}

}  // namespace

void* operator new(std::size_t n) {
  return take(n);
}
void* operator new[](std::size_t n) {
  return take(n);
}
void* operator new(std::size_t n, const std::nothrow_t&) noexcept {
  return take(n);
}
void* operator new[](std::size_t n, const std::nothrow_t&) noexcept {
  return take(n);
}
void operator delete(void* p) noexcept {
  release(p);
}
void operator delete[](void* p) noexcept {
  release(p);
}
void operator delete(void* p, std::size_t) noexcept {
  release(p);
}
void operator delete[](void* p, std::size_t) noexcept {
  release(p);
}

int main() {
  secret(false);
  if (marksReleased == 0) return std::puts("what was not wiped is not seen: the method does not work here"), 2;
  marksReleased = 0;
  useSecrets();
  std::printf("%u secrets in released blocks\n", marksReleased);
  return marksReleased != 0;
}

// ICU and OpenSSL take their memory from the test program's operator new, so that it can be refused to them like to the
// library itself. Both accept such hooks only before their first use: a static object sets them.
#include <openssl/crypto.h>
#include <unicode/uclean.h>

#include <cstdlib>
#include <cstring>
#include <new>

#include "varnik/services/memory/Types.h"

namespace {

constexpr std::size_t kHead = 16;  // in front of each block: its size

void* allocate(std::size_t n) {
  const auto handler = std::set_new_handler(nullptr);  // a C library knows none
  auto* const block = static_cast<u8*>(::operator new(n + kHead, std::nothrow));
  std::set_new_handler(handler);
  if (!block) return nullptr;
  std::memcpy(block, &n, sizeof n);
  return block + kHead;
}

void release(void* block) {
  if (block) ::operator delete(static_cast<u8*>(block) - kHead);
}

void* resize(void* block, std::size_t n) {
  void* const made = allocate(n);
  if (!made || !block) return made;
  std::size_t old = 0;
  std::memcpy(&old, static_cast<u8*>(block) - kHead, sizeof old);
  std::memcpy(made, block, old < n ? old : n);
  release(block);
  return made;
}

[[maybe_unused]] const bool isHooked = [] {
  UErrorCode status = U_ZERO_ERROR;
  u_setMemoryFunctions(
      nullptr, [](const void*, std::size_t n) { return allocate(n); },
      [](const void*, void* block, std::size_t n) { return resize(block, n); },
      [](const void*, void* block) { release(block); }, &status);
  const bool openssl =
      CRYPTO_set_mem_functions([](std::size_t n, const char*, int) { return n ? allocate(n) : nullptr; },
                               [](void* block, std::size_t n, const char*, int) -> void* {
                                 if (n != 0) return resize(block, n);
                                 release(block);
                                 return nullptr;
                               },
                               [](void* block, const char*, int) { release(block); });
  if (U_FAILURE(status) || !openssl) std::abort();
  return true;
}();

}  // namespace

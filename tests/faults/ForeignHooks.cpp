// ICU and OpenSSL take their memory from the test program's operator new, so that it can be refused to them like to the
// library itself. Both accept such hooks only before their first use: a static object sets them.
#include <malloc.h>
#include <openssl/crypto.h>
#include <unicode/uclean.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

void* allocate(std::size_t n) {
  const auto handler = std::set_new_handler(nullptr);  // a C library knows none
  void* const block = ::operator new(n, std::nothrow);
  std::set_new_handler(handler);
  return block;
}

void* resize(void* block, std::size_t n) {
  void* const made = allocate(n);
  if (!made || !block) return made;
  std::memcpy(made, block, std::min(n, malloc_usable_size(block)));
  ::operator delete(block);
  return made;
}

[[maybe_unused]] const bool isHooked = [] {
  UErrorCode status = U_ZERO_ERROR;
  u_setMemoryFunctions(
      nullptr, [](const void*, std::size_t n) { return allocate(n); },
      [](const void*, void* block, std::size_t n) { return resize(block, n); },
      [](const void*, void* block) { ::operator delete(block); }, &status);
  const bool openssl =
      CRYPTO_set_mem_functions([](std::size_t n, const char*, int) { return n ? allocate(n) : nullptr; },
                               [](void* block, std::size_t n, const char*, int) -> void* {
                                 if (n != 0) return resize(block, n);
                                 ::operator delete(block);
                                 return nullptr;
                               },
                               [](void* block, const char*, int) { ::operator delete(block); });
  if (U_FAILURE(status) || !openssl) std::abort();
  return true;
}();

}  // namespace

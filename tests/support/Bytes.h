// Buffers and texts for tests.
#pragma once

#include <cstring>
#include <initializer_list>
#include <string>
#include <string_view>

#include "tests/support/Random.h"
#include "varnik/Varnik.h"

/// A buffer that holds the given bytes.
inline DataBuffer bufferOf(std::string_view bytes) {
  DataBuffer b;
  b.append(bytes.data(), static_cast<u32>(bytes.size()));
  return b;
}

/// A buffer that borrows `n` bytes.
inline DataBuffer borrowing(void* bytes, std::size_t n) {
  DataBuffer b;
  b.borrowData(bytes, static_cast<u32>(n));
  return b;
}
inline DataBuffer borrowing(std::string& bytes) {
  return borrowing(bytes.data(), bytes.size());
}
/// A string of the given UTF-8.
inline XString wideOf(const char* utf8) {
  XString text;
  text.setFromUtf8(utf8);
  return text;
}

/// Bytes from hex digits; blanks are skipped.
inline std::string fromHex(std::string_view hex) {
  std::string bytes;
  u32 digits = 1;  // behind a bit that tells when there are two
  for (const char c : hex) {
    if (c != ' ') digits = digits << 4 | static_cast<u32>(c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10);
    if (digits >= 0x100) bytes += static_cast<char>(digits), digits = 1;
  }
  return bytes;
}

/// The content of a buffer, of a string.
inline std::string textOf(const DataBuffer& b) {
  return b.empty() ? std::string() : std::string(reinterpret_cast<const char*>(b.getData2()), b.size());
}
inline std::string textOf(const StringBuffer& s) {
  return {s.getString(), s.getSize()};
}

/// A buffer as "CONTENT of CAPACITY", and what else there is to say of it.
inline std::string stateOf(const DataBuffer& b) {
  return textOf(b) + " of " + std::to_string(b.getBufSize()) + (b.getData2() ? "" : ", no block") +
         (b.heapUsage() == b.getBufSize() ? ""
          : b.heapUsage() == 0            ? ", lent"
                                          : ", miscounted") +
         (b.secure ? ", secure" : "");
}

inline const u8* bytesOf(std::string_view s) {
  return reinterpret_cast<const u8*>(s.data());
}
inline u32 countOf(std::string_view s) {
  return static_cast<u32>(s.size());
}
inline std::string stringAt(const void* bytes, std::size_t n) {
  return {static_cast<const char*>(bytes), n};
}
/// UTF-16 units in host order, as a buffer keeps them.
inline std::string unitsOf(std::u16string_view text) {
  return stringAt(text.data(), text.size() * 2);
}

/// Takes what is said and keeps nothing.
inline LogNull nowhere;

/// A text again and again, until there are `n` characters at least.
inline std::string repeated(std::string_view text, std::size_t n) {
  std::string all;
  while (all.size() < n) all += text;
  return all;
}
/// `n` random bytes, the same for the same seed.
inline std::string randomBytes(std::size_t n, u32 seed = 1) {
  std::mt19937 next = generator(seed);
  std::string bytes(n, '\0');
  for (char& c : bytes) c = static_cast<char>(next());
  return bytes;
}

// Conversions for tests, ours and the C library's.
#pragma once

#include <iconv.h>

#include "tests/support/Test.h"

struct Converted {
  std::string text;
  bool good;
  bool operator==(const Converted&) const = default;
};

inline Converted convert(s32 from, s32 to, std::string_view text) {
  DataBuffer out;
  const bool good = _vkEncodingConvert().EncConvert(from, to, bytesOf(text), countOf(text), out, nowhere);
  return {textOf(out), good};
}

/// What iconv makes of a text; nothing, and not good, where it stops or does not know a charset.
inline Converted byIconv(const char* from, const char* to, std::string_view text) {
  const iconv_t handle = iconv_open(to, from);
  if (handle == reinterpret_cast<iconv_t>(-1)) return {"", false};
  std::string out(text.size() * 4 + 16, '\0');
  char *in = const_cast<char*>(text.data()), *at = out.data();
  std::size_t left = text.size(), room = out.size();
  const bool good = iconv(handle, &in, &left, &at, &room) != static_cast<std::size_t>(-1);
  iconv(handle, nullptr, nullptr, &at, &room);  // back to the first state
  iconv_close(handle);
  out.resize(good ? out.size() - room : 0);
  return {out, good};
}

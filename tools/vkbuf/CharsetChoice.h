// Which charset a text is in: by name, or by looking.
#pragma once

#include <string>
#include <string_view>

#include "tools/vkbuf/Job.h"
#include "varnik/buffer/DataBuffer.h"

constexpr s32 kUtf8 = 65001, kUtf16Le = 1200, kUtf16Be = 1201, kUtf32Le = 12000, kUtf32Be = 12001;

/// A byte-order mark: the code page it stands for and its name for people; 0 for none.
struct Mark {
  s32 codePage = 0;
  const char* charset = "";
  u32 length = 0;  // bytes
};

/// Returns the byte-order mark at the head of the data, the longest that fits.
Mark markOf(const DataBuffer& data);
/// Returns the name for people, the bytes of the byte-order mark, of a code page that has one; else an empty text.
const char* charsetOf(s32 codePage);
std::string_view markBytes(s32 codePage);

/// Returns the code page of a charset name; a name that is none ends the command.
s32 codePageOf(const std::string& name);

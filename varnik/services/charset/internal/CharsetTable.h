// The charsets that the library knows, by code-page number and by name. Constant tables; any thread may read them.
#pragma once

#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

namespace vk_charset {

/// How a charset is converted. The first five agree with `vk_simd::Utf`.
enum class Kind : u8 {
  kUtf8,
  kUtf16Le,
  kUtf16Be,
  kUtf32Le,
  kUtf32Be,
  kSingleByte,  // a byte is a character
  kDoubleByte,  // ASCII bytes, and pairs that begin with a byte from 0x80 on; a character is one UTF-16 unit
  kMultiByte,   // ASCII bytes, and longer sequences that begin with a byte from 0x80 on
  kStateful,    // a byte means what those before it make of it
};

struct CharsetInfo {
  const char* name;       // the canonical name
  const char* converter;  // ICU's name for it; null where our own tables serve
  s32 id;                 // the code page, or one of the two below
  Kind kind;
};

/// Names that leave the byte order to a byte-order mark, and take little-endian where there is none. They have a name,
/// but no number of their own: `codePageOf` gives that of the little-endian form.
constexpr s32 kUtf16ByMark = -1200, kUtf32ByMark = -12000;

constexpr s32 codePageOf(s32 id) {
  return id < 0 ? -id : id;
}
constexpr bool isUnicode(Kind kind) {
  return kind <= Kind::kUtf32Be;
}

/// Returns the charset with a code-page number, or with an id; null for one that the table does not list.
const CharsetInfo* charsetByCodePage(s32 codePage);
const CharsetInfo* charsetById(s32 id);
/// Returns the charset that a label of `n` characters names; null when it names none. White space around it,
/// letter case, hyphens, underscores, blanks and the zeros in front of a number do not count (Unicode Technical
/// Standard 22, section 1.4). `label` may be null when `n` is 0.
const CharsetInfo* charsetByLabel(const char* label, u32 n);

/// All charsets, in the order of their ids, and all labels, in the order in which they compare.
struct Label {
  const char* text;
  s32 id;
};
const CharsetInfo* charsets(u32& count);
const Label* labels(u32& count);

}  // namespace vk_charset

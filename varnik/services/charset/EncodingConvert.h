#pragma once

#include "varnik/services/logging/LogBase.h"
#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

class DataBuffer;
class StringBuffer;

/// Converts text from one charset to another. One object serves one call after the other; each call starts afresh.
///
/// Code pages are the Windows code-page identifiers: 1200 and 1201 are UTF-16 little- and big-endian, 12000 and 12001
/// UTF-32, 65001 UTF-8. A byte-order mark at the head of input in UTF-8, UTF-16 or UTF-32 is dropped, one mark only,
/// and none is written. Each maximal bad part of the input and each character that the target lacks becomes U+FFFD (or
/// the target's own substitute): the conversion carries on to the end and answers false. A number or name that no table
/// lists appends nothing and answers false. When memory runs out, what was appended so far stays, and the answer is
/// false.
class VARNIK_API _vkEncodingConvert {
 public:
  /// Appends the conversion of `size` bytes at `data` to `out`. `data` may lie in `out`'s own storage.
  bool EncConvert(s32 fromCodePage, s32 toCodePage, const u8* data, u32 size, DataBuffer& out, LogBase& log);
  /// The same, from a charset given by its name; see `CharsetNames`.
  bool ChConvert2(StringBuffer& fromCharset, s32 toCodePage, const u8* data, u32 size, DataBuffer& out, LogBase& log);
};

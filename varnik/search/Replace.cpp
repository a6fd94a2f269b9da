// Replacing every occurrence of a pattern. The result is built beside the old content, run by run, so that it is
// written once and the pattern and its replacement may lie in the content itself.
#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/charset/Utf16Case.h"
#include "varnik/services/strings/XString.h"
#include "varnik/simd/FindBytes.h"

u32 DataBuffer::replaceAllOccurances(const u8* find, u32 findLen, const u8* replacement, u32 replacementLen) {
  if (!find || findLen == 0 || !data_ || findLen > size_) return 0;
  const u32 n = size_;
  vk_simd::BytesFinder finder(data_, n, find, findLen);
  u32 at = finder.next(0);
  u8* block = at != n ? allocByteArray(n) : nullptr;
  if (!block) return 0;

  u8* const old = data_;
  const bool wasBorrowed = borrowed_ != 0;
  u32 from = 0, count = 0;
  install(block, 0, n, false);
  for (; at != n; at = finder.next(from)) {
    append(old + from, at - from);
    append(replacement, replacementLen);
    from = at + findLen;
    ++count;
  }
  append(old + from, n - from);
  if (!wasBorrowed) delete[] old;
  return count;
}

u32 DataBuffer::replaceUnicodeString(XString& find, XString& replacement) {
  if (find.isEmpty()) return 0;
  DataBuffer pattern, with;
  if (!find.getUtf16_le(false, pattern) || !replacement.getUtf16_le(false, with)) return 0;
  return replaceAllOccurances(pattern.data_, pattern.size_, with.data_, with.size_);
}

u32 DataBuffer::replaceAllOccurancesUtf16NoCase(XString& find, XString& replacement) {
  if (find.isEmpty()) return 0;
  // The units of one string given twice are asked for once: the second call might move them.
  const u16* pattern = find.getUtf16_xe();
  const u16* with = &replacement == &find ? pattern : replacement.getUtf16_xe();
  const u32 patternLen = find.getNumChars(), withLen = replacement.getNumChars();
  if (!pattern || !with || patternLen > size_ / 2) return 0;

  DataBuffer result;
  result.secure = secure;
  const u16* from = reinterpret_cast<const u16*>(data_);  // at any address: a borrowed block may begin at an odd one
  u32 left = size_ / 2, count = 0;
  while (const u16* hit = vk_findUtf16NoCase(from, left, pattern, patternLen)) {
    const u32 run = static_cast<u32>(hit - from);
    result.append(from, run * 2);
    result.append(with, withLen * 2);
    ++count;
    from = hit + patternLen;
    left -= run + patternLen;
  }
  if (count == 0) return 0;
  result.append(from, left * 2);
  takeData(result);
  return count;
}

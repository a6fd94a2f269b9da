// Replacing every occurrence of a pattern. The result is built beside the old content, run by run, so that it is
// written once and the pattern and its replacement may lie in the content itself.
#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/charset/Utf16Case.h"
#include "varnik/services/strings/XString.h"

u32 DataBuffer::replaceAllOccurances(const u8* find, u32 findLen, const u8* replacement, u32 replacementLen) {
  if (!find || findLen == 0 || !data_) return 0;
  const u8* hit = findBytes2(data_, size_, find, findLen);
  u8* block = hit ? allocByteArray(size_) : nullptr;
  if (!block) return 0;

  u8* const old = data_;
  const bool wasBorrowed = borrowed_ != 0;
  const u8* from = old;
  u32 left = size_, count = 0;
  install(block, 0, size_, false);
  while (hit) {
    const u32 run = static_cast<u32>(hit - from);
    append(from, run);
    append(replacement, replacementLen);
    ++count;
    from = hit + findLen;
    left -= run + findLen;
    hit = findBytes2(from, left, find, findLen);
  }
  append(from, left);
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
  constexpr u32 kMostUnits = 0x7FFFFFFF;  // what a buffer can hold
  if (find.isEmpty()) return 0;
  // The units of one string given twice are asked for once: the second call might move them.
  const u16* pattern = find.getUtf16_xe();
  const u16* with = &replacement == &find ? pattern : replacement.getUtf16_xe();
  const u32 patternLen = find.getNumChars(), withLen = replacement.getNumChars();
  if (!pattern || !with || patternLen > size_ / 2 || withLen > kMostUnits) return 0;

  DataBuffer aligned, result;  // a borrowed block may begin at an odd address
  const bool isOdd = reinterpret_cast<std::uintptr_t>(data_) % alignof(u16) != 0;
  if (isOdd && !stage(data_, size_, aligned)) return 0;
  const u16* from = reinterpret_cast<const u16*>(isOdd ? aligned.data_ : data_);
  u32 left = size_ / 2, count = 0;
  result.secure = secure;
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

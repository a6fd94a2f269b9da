// Searches for byte patterns. All of them compare bytes exactly and answer with the first occurrence.
#include <algorithm>

#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/memory/Text.h"
#include "varnik/simd/FindBytes.h"

const u8* DataBuffer::findBytes2(const u8* haystack, u32 haystackLen, const u8* pattern, u32 patternLen) {
  if (patternLen == 0) return haystack;
  if (!haystack || patternLen > haystackLen) return nullptr;
  const u32 at = vk_simd::findBytes(haystack, haystackLen, pattern, patternLen);
  return at != haystackLen ? haystack + at : nullptr;
}

const u8* DataBuffer::findBytes(const u8* pattern, s32 patternLen) const {
  return patternLen < 0 ? nullptr : findBytes2(data_, size_, pattern, static_cast<u32>(patternLen));
}

u32 DataBuffer::findBytesIdx(const u8* pattern, s32 patternLen, bool& found, u32 startIndex) const {
  found = false;
  if (!data_ || patternLen < 0 || s64{startIndex} + patternLen > size_) return 0;
  const u8* hit = findBytes2(data_ + startIndex, size_ - startIndex, pattern, static_cast<u32>(patternLen));
  if (!hit) return 0;
  found = true;
  return static_cast<u32>(hit - data_);
}

bool DataBuffer::beginsWith(const u8* prefix, s32 n) const {
  if (!data_ || n < 0 || static_cast<u32>(n) > size_) return false;
  return vk_memcmp(data_, prefix, static_cast<u32>(n)) == 0;
}

bool DataBuffer::endsWithStr(const char* text) const {
  if (!text) return false;
  const u32 n = vk_strlen(text);
  return n == 0 || (data_ && n <= size_ && vk_memcmp(data_ + (size_ - n), text, n) == 0);
}

bool DataBuffer::containsSubstring2(const char* text, u32 startIndex, u32 maxLen, u32& index) const {
  index = startIndex;
  if (!text || !data_ || startIndex >= size_) return false;
  u32 range = size_ - startIndex;
  if (maxLen != 0) range = std::min(range, maxLen);
  const u32 n = vk_strlen(text);
  if (n > range) return false;
  const u8* from = data_ + startIndex;
  const u8* hit = findBytes2(from, range, reinterpret_cast<const u8*>(text), n);
  index = startIndex + (hit ? static_cast<u32>(hit - from) : range - n + 1);
  return hit != nullptr;
}

bool DataBuffer::containsSubstring(const char* text, u32 maxLen) const {
  u32 index = 0;
  return containsSubstring2(text, 0, maxLen, index);
}

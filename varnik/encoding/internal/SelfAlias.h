// Arguments that lie in the storage of the object that they are appended to.
#pragma once

#include <cstdint>

#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/strings/StringBuffer.h"

/// Returns true when `p` points into the `size` + 1 bytes at `block`; false for a null block.
inline bool vk_pointsInto(const void* p, const void* block, u32 size) {
  const auto address = reinterpret_cast<std::uintptr_t>(p), first = reinterpret_cast<std::uintptr_t>(block);
  return block && address - first <= size;
}

/// Calls `append(bytes)` with `n` bytes that do not lie in the storage of `out`: `data` itself, or a copy. Returns its
/// answer, or false when the copy finds no memory.
template <class Append>
bool vk_withoutAlias(const u8* data, u32 n, const StringBuffer& out, Append append) {
  if (n == 0 || !vk_pointsInto(data, out.getString(), out.getSize())) return append(data);
  DataBuffer copy;
  return copy.append(data, n) && append(static_cast<const u8*>(copy.getData2()));
}

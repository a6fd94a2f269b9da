// Blocks of bytes: where they come from, and how they are copied, filled and compared.
#pragma once

#include <cstddef>

#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

/// Returns a block of `n` bytes that array delete releases, or null when memory is exhausted. The content is undefined.
/// For `n` = 0 the block is valid and holds no byte. Never throws.
VARNIK_API u8* allocByteArray(u32 n);

/// Copies `n` bytes; the areas must not overlap. Null pointers are allowed when `n` is 0.
VARNIK_API void vk_memcpy(void* to, const void* from, u32 n);

/// Fills `n` bytes with the low 8 bits of `value`. The stores are really made, also when the memory is released right
/// after: this is how secrets are wiped. A null pointer is allowed when `n` is 0.
VARNIK_API void vk_memset(void* to, int value, u32 n);

/// Compares `n` bytes as unsigned values: 0 when equal, else negative or positive as the first difference orders them.
/// Null pointers are allowed when `n` is 0.
VARNIK_API int vk_memcmp(const void* a, const void* b, std::size_t n);

/// Returns true when the running processor stores integers least significant byte first.
VARNIK_API bool vk_isLittleEndian();

namespace vk64 {

/// Returns true when `value` does not fit in 32 unsigned bits; negative values do not.
constexpr bool TooBigForUnsigned32(s64 value) {
  return value < 0 || value > s64{0xFFFFFFFF};
}

/// Splits `value` into its low and high 32 bits.
constexpr void Int64ToDwords(s64 value, u32& low, u32& high) {
  low = static_cast<u32>(static_cast<u64>(value));
  high = static_cast<u32>(static_cast<u64>(value) >> 32);
}

}  // namespace vk64

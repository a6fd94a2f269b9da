#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

/// Two units of a pattern, each as the units that count as it: four of them, some alike where there are fewer.
struct UnitPair {
  u16 first[4], second[4];
  u32 distance;  // of the second behind the first, in units
};

/// Returns the first index below `places` at which the UTF-16 units (host order, any address) have the first unit of a
/// pair with the second one in its place behind it, or `places`. REQUIRES: `places` + `distance` units can be read.
u32 findUnitPair(const u8* units, u32 places, const UnitPair& pair);

u32 findUnitPairScalar(const u8* units, u32 places, const UnitPair& pair);
#if VARNIK_HAVE_AVX2
u32 findUnitPairAvx2(const u8* units, u32 places, const UnitPair& pair);
#endif

}  // namespace vk_simd

#pragma once

#include "varnik/services/logging/LogBase.h"
#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

class DataBuffer;

/// Random bytes from the operating system's generator, fit for keys. Safe from any thread and across a fork: no state
/// is kept in the process.
class VARNIK_API RandomSource {
 public:
  /// Appends `n` random bytes to `out`. False, `out` unchanged, when memory or the generator fails.
  static bool generateBytes(u32 n, DataBuffer& out);
  /// Returns one random byte. Where the operating system's generator fails, it is tried again until it answers.
  static u8 generateByte(LogBase& log);
};

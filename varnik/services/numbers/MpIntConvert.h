// Unsigned integers of any size, and their forms as bytes and as digits.
#pragma once

#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

class DataBuffer;
class StringBuffer;

/// An unsigned integer of any size, 0 at first. Not copyable.
class VARNIK_API mp_int {
 public:
  mp_int() = default;
  mp_int(const mp_int&) = delete;
  mp_int& operator=(const mp_int&) = delete;
  ~mp_int();

 private:
  friend class MpIntConvert;
  u64* limbs_ = nullptr;  // least significant first
  u32 numLimbs_ = 0;      // no leading zero limb: 0 limbs are the number 0
};

/// Converts integers. Bytes are big-endian: most significant first. Operations that find no memory answer false.
class VARNIK_API MpIntConvert {
 public:
  /// Sets the integer from `n` bytes; a count below 1 sets 0.
  static bool bytesToMpInt(mp_int& value, const u8* bytes, s32 n);
  /// Appends the integer's bytes, without leading zero bytes; 0 is one zero byte.
  static bool mpIntToBytes(const mp_int& value, DataBuffer& out);
  /// Sets the integer from the digits at the start of a NUL-terminated text, white space before them skipped. `radix`
  /// is 2 to 36. False when there is no digit or something else than white space follows: the digits before it count.
  static bool textToMpInt(mp_int& value, const char* text, s32 radix);
  /// Appends the integer's digits, lower case, no leading zero. `radix` is 2 to 36.
  static bool mpIntToText(const mp_int& value, StringBuffer& out, s32 radix);
};

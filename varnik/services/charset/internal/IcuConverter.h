// One charset of ICU, for one conversion: opened when it is first used, closed with the object.
#pragma once

#include "varnik/services/memory/Types.h"

struct UConverter;

namespace vk_charset {

/// What stands for a character that a legacy charset lacks: the default character of the Windows code pages, in every
/// charset the same (many of ICU's tables would write the control 0x1A).
constexpr u16 kSubstitute = u'?';

class IcuConverter {
 public:
  explicit IcuConverter(const char* name) : name_(name) {}
  ~IcuConverter();
  IcuConverter(const IcuConverter&) = delete;
  IcuConverter& operator=(const IcuConverter&) = delete;

  enum class Result { kDone, kRoomUsed, kFailed };
  struct Step {
    u32 read, written;
    Result result;  // kDone: all input is taken; kRoomUsed: there is more to write, call again; kFailed: ICU cannot
  };
  /// Converts bytes to UTF-16 units in host order; a bad part becomes U+FFFD. `last` closes the text: a character or
  /// sequence that is not complete then is a bad part.
  Step toUnits(const u8* data, u32 n, u16* units, u32 room, bool last);
  /// Converts units to bytes; what has no mapping becomes kSubstitute. `last` returns the charset to its first state.
  Step fromUnits(const u16* units, u32 n, u8* data, u32 room, bool last);

  bool isOpen() const { return converter_ != nullptr; }
  /// True between characters: all that was taken has been turned into units.
  bool isBetweenCharacters() const;
  /// True once a part was bad or a character had no mapping.
  bool bad() const { return bad_; }
  void forgetBad() { bad_ = false; }

 private:
  bool open();

  const char* name_;
  UConverter* converter_ = nullptr;
  bool bad_ = false;
};

}  // namespace vk_charset

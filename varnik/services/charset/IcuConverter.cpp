#include "varnik/services/charset/internal/IcuConverter.h"

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/ucnv_err.h>

namespace vk_charset {
namespace {

void U_CALLCONV onBadPart(const void* bad, UConverterToUnicodeArgs* args, const char*, int32_t,
                          UConverterCallbackReason reason, UErrorCode* error) {
  if (reason > UCNV_IRREGULAR) return;  // the converter is reset or closed
  *static_cast<bool*>(const_cast<void*>(bad)) = true;
  static constexpr UChar kReplacement = 0xFFFD;
  *error = U_ZERO_ERROR;
  ucnv_cbToUWriteUChars(args, &kReplacement, 1, 0, error);
}

// ICU's own callback would drop characters that are ignorable by default (U+200B, U+FE0F, ...): nothing is dropped
// here.
void U_CALLCONV onUnmapped(const void* bad, UConverterFromUnicodeArgs* args, const UChar*, int32_t, UChar32,
                           UConverterCallbackReason reason, UErrorCode* error) {
  if (reason > UCNV_IRREGULAR) return;
  *static_cast<bool*>(const_cast<void*>(bad)) = true;
  static constexpr UChar kUnits[] = {kSubstitute};
  const UChar* from = kUnits;
  *error = U_ZERO_ERROR;
  ucnv_cbFromUWriteUChars(args, &from, kUnits + 1, 0, error);
}

IcuConverter::Result resultOf(UErrorCode error) {
  if (error == U_BUFFER_OVERFLOW_ERROR) return IcuConverter::Result::kRoomUsed;
  return U_FAILURE(error) ? IcuConverter::Result::kFailed : IcuConverter::Result::kDone;
}

}  // namespace

IcuConverter::~IcuConverter() {
  if (converter_) ucnv_close(converter_);
}

bool IcuConverter::open() {
  if (converter_) return true;
  UErrorCode error = U_ZERO_ERROR;
  converter_ = ucnv_open(name_, &error);
  if (converter_) {
    ucnv_setFallback(converter_, false);  // a character that only resembles another must not turn into it
    ucnv_setToUCallBack(converter_, onBadPart, &bad_, nullptr, nullptr, &error);
    ucnv_setFromUCallBack(converter_, onUnmapped, &bad_, nullptr, nullptr, &error);
  }
  return converter_ && U_SUCCESS(error);
}

IcuConverter::Step IcuConverter::toUnits(const u8* data, u32 n, u16* units, u32 room, bool last) {
  if (!open()) return {0, 0, Result::kFailed};
  const char* const first = reinterpret_cast<const char*>(data);
  const char* from = first;
  UChar* const start = reinterpret_cast<UChar*>(units);
  UChar* to = start;
  UErrorCode error = U_ZERO_ERROR;
  ucnv_toUnicode(converter_, &to, start + room, &from, first + n, nullptr, last, &error);
  return {static_cast<u32>(from - first), static_cast<u32>(to - start), resultOf(error)};
}

IcuConverter::Step IcuConverter::fromUnits(const u16* units, u32 n, u8* data, u32 room, bool last) {
  if (!open()) return {0, 0, Result::kFailed};
  const UChar* const first = reinterpret_cast<const UChar*>(units);
  const UChar* from = first;
  char* const start = reinterpret_cast<char*>(data);
  char* to = start;
  UErrorCode error = U_ZERO_ERROR;
  ucnv_fromUnicode(converter_, &to, start + room, &from, first + n, nullptr, last, &error);
  return {static_cast<u32>(from - first), static_cast<u32>(to - start), resultOf(error)};
}

bool IcuConverter::isBetweenCharacters() const {
  if (!converter_) return true;
  UErrorCode error = U_ZERO_ERROR;
  return ucnv_toUCountPending(converter_, &error) == 0 && U_SUCCESS(error);
}

}  // namespace vk_charset

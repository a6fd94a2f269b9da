#include "varnik/services/codecs/TextScan.h"

#include "varnik/services/memory/Text.h"
#include "varnik/simd/GatherText.h"

namespace {

char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

}  // namespace

s32 TextScan::scanOne(const char* text, const char* format, s32* value) {
  if (!text || !format || !value) return 0;
  for (; *format != 0 && !(format[0] == '%' && format[1] == 'd'); ++format, ++text)
    if (*text == 0 || lower(*text) != lower(*format)) return 0;
  if (*format == 0) return 0;
  while (vk_simd::isWhiteSpace(*text)) ++text;
  const bool negative = *text == '-';
  if (negative || *text == '+') ++text;
  u32 digits = 0;
  const u32 magnitude = vk_parseDecimal(text, digits);
  if (digits == 0) return 0;
  const u32 limit = negative ? 0x80000000U : 0x7FFFFFFFU;
  const s64 clamped = magnitude < limit ? magnitude : limit;
  *value = static_cast<s32>(negative ? -clamped : clamped);
  return 1;
}

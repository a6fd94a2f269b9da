// Output to `std::ostream`. A header of its own: those who do not stream do not pay for `<ostream>`.
#pragma once

#include <ostream>

#include "varnik/buffer/Spans.h"
#include "varnik/interop/Describe.h"

/// Writes the characters of a string, zero bytes included; width and fill count as for any text.
inline std::ostream& operator<<(std::ostream& to, const StringBuffer& s) {
  return to << vk_view(s);
}

/// Writes what a buffer is, not what it holds: its size and its first 32 bytes as hex, a `secure` one's size alone (see
/// `vk_describe`). The bytes themselves go out by `to.write` or `to << vk_view(b)`.
inline std::ostream& operator<<(std::ostream& to, const DataBuffer& b) {
  char area[kVkDescribeRoom];
  return to << std::string_view(area, vk_describe(b, area));
}

// Formatting by the library fmt (https://fmt.dev), for those who have it: varnik itself does not need it. Both take the
// format specification of a text: width, fill, precision.
//
//   fmt::print("{:>12}|{}\n", text, bytes);
//
// fmt/ranges.h would print a buffer as a list of numbers: a `secure` one too. With this header it does not.
#pragma once

#include <fmt/format.h>

#include "varnik/buffer/Spans.h"
#include "varnik/interop/Describe.h"

/// Formats the characters of a string.
template <>
struct fmt::formatter<StringBuffer> : fmt::formatter<std::string_view> {
  auto format(const StringBuffer& s, fmt::format_context& context) const {
    return fmt::formatter<std::string_view>::format(vk_view(s), context);
  }
};

/// Formats what a buffer is (see `vk_describe`): its size and first bytes, a `secure` one's size alone.
template <>
struct fmt::formatter<DataBuffer> : fmt::formatter<std::string_view> {
  auto format(const DataBuffer& b, fmt::format_context& context) const {
    char area[kVkDescribeRoom];
    return fmt::formatter<std::string_view>::format(std::string_view(area, vk_describe(b, area)), context);
  }
};

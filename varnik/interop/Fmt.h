// Formatting by the library fmt (https://fmt.dev), for those who have it: varnik itself does not need it. Both take the
// format of a text: width, fill, precision.
//
//   fmt::print("{:>12}|{}\n", text, bytes);
//
// fmt/ranges.h would print a buffer as a list of numbers: a `secure` one too. With this header it does not.
#pragma once

#include <fmt/format.h>

#include "varnik/buffer/Spans.h"
#include "varnik/interop/Describe.h"

namespace fmt {

/// Formats the characters of a string.
template <>
struct formatter<StringBuffer> : formatter<std::string_view> {
  /// Called by fmt.
  auto format(const StringBuffer& s, format_context& context) const {
    return formatter<std::string_view>::format(vk_view(s), context);
  }
};

/// Formats what a buffer is (see `vk_describe`): its size and first bytes, a `secure` one's size alone.
template <>
struct formatter<DataBuffer> : formatter<std::string_view> {
  /// Called by fmt.
  auto format(const DataBuffer& b, format_context& context) const {
    char area[kVkDescribeRoom];
    return formatter<std::string_view>::format(std::string_view(area, vk_describe(b, area)), context);
  }
};

}  // namespace fmt

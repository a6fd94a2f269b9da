// How do I use a buffer with std::vector, std::string_view and std::span?
//
// `varnik/buffer/Spans.h` has views and ranges of a buffer, and appends from views. Nothing converts by itself, and a
// view holds until the buffer changes.
#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "varnik/buffer/Spans.h"

int main() {
  DataBuffer bytes;
  const std::vector<u8> numbers = {3, 1, 2};
  if (!vk_append(bytes, numbers) || !vk_append(bytes, "text")) return 1;

  std::ranges::sort(vk_span(bytes).first(3));
  const std::vector<u8> copy(begin(bytes), end(bytes));
  std::printf("%zu bytes, first %u, text %s\n", copy.size(), copy[0], std::string(vk_view(bytes).substr(3)).c_str());

  u32 sum = 0;
  for (const u8 b : bytes) sum += b;
  std::printf("sum %u\n", sum);
  return 0;
}

// Prints:
//   7 bytes, first 1, text text
//   sum 459

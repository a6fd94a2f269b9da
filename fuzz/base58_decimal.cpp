// Base58 and decimal against long division by hand, both ways.
#include <algorithm>

#include "fuzz/Fuzz.h"

namespace {

/// The digits of a big-endian number in another base, no leading zeros.
std::string convert(std::string_view digits, u32 from, u32 to) {
  std::string reversed;
  for (const char c : digits) {
    u32 carry = static_cast<u8>(c);
    for (char& digit : reversed) {
      carry += static_cast<u8>(digit) * from;
      digit = static_cast<char>(carry % to);
      carry /= to;
    }
    for (; carry != 0; carry /= to) reversed += static_cast<char>(carry % to);
  }
  return {reversed.rbegin(), reversed.rend()};
}

std::string spelled(std::string digits, std::string_view alphabet) {
  for (char& c : digits) c = alphabet[static_cast<u8>(c)];
  return digits;
}

constexpr std::string_view kBase58 = "123456789ABCDEFGHJKLMNPQRSTUVWXYZabcdefghijkmnopqrstuvwxyz";

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t n) {
  const std::string_view given = Choices(data, std::min<std::size_t>(n, 512)).rest();
  const std::size_t zeros = std::min(given.find_first_not_of('\0'), given.size());
  LogNull log;
  StringBuffer text, number;
  CHECK(ContentEncoder::encodeBase58(bytesOf(given), countOf(given), text, log));
  CHECK(viewOf(text) == std::string(zeros, '1') + spelled(convert(given, 256, 58), kBase58));
  DataBuffer back, numberBack, any;
  CHECK(ContentEncoder::decodeId7(text.getString(), back, log) && viewOf(back) == given);

  CHECK(DataBuffer::encodeDB2("decimal", bytesOf(given), countOf(given), number));
  const std::string digits = spelled(convert(given, 256, 10), "0123456789");
  CHECK(viewOf(number) == (digits.empty() ? "0" : digits));
  CHECK(numberBack.appendEncoded(number.getString(), "decimal"));
  CHECK(viewOf(numberBack) == (digits.empty() ? std::string_view("\0", 1) : given.substr(zeros)));

  std::string base58;  // every text of the alphabet is a number
  for (const char c : given) base58 += static_cast<char>(static_cast<u8>(c) % 58);
  const std::size_t ones = std::min(base58.find_first_not_of('\0'), base58.size());
  CHECK(any.appendEncoded(spelled(base58, kBase58).c_str(), "base58"));
  CHECK(viewOf(any) == std::string(ones, '\0') + convert(base58, 58, 256));
  return 0;
}

// The in-place clean-up operations against slow models.
#include <algorithm>

#include "fuzz/Fuzz.h"

namespace {

constexpr std::string_view kProbe("\x1b\x37\x1b[r\x1b[999;999H\x1b[6n\x1b\x38", 21);

std::string withoutColours(std::string_view s) {
  std::string left;
  while (!s.empty()) {
    const std::size_t m = s.size() > 2 ? s.find('m', 2) : s.npos;
    if (s.starts_with(kProbe)) {
      s.remove_prefix(kProbe.size());
    } else if (s.starts_with("\x1b[") && m <= 15) {
      s.remove_prefix(m + 1);
    } else {
      left += s[0];
      s.remove_prefix(1);
    }
  }
  return left;
}

std::string unstuffed(std::string s) {
  for (std::size_t at = 0; (at = s.find("\n..", at)) != s.npos; at += 2) s.erase(at + 1, 1);
  return s;
}

bool hasBare(const std::string& s) {
  for (std::size_t i = 0; i < s.size(); ++i) {
    if (s.compare(i, 2, "\r\n") == 0)
      ++i;
    else if (s[i] == '\r' || s[i] == '\n')
      return true;
  }
  return false;
}

bool hasLonger(const std::string& s, u32 most) {
  u32 length = 0;
  for (const char c : s) {
    length = c == '\r' || c == '\n' ? 0 : length + 1;
    if (length > most) return true;
  }
  return false;
}

/// The units of host order, without a last odd byte.
std::u16string units(std::string_view s) {
  std::u16string wide(s.size() / 2, u'\0');
  __builtin_memcpy(wide.data(), s.data(), wide.size() * 2);
  return wide;
}

template <class Operation>
void check(std::string_view given, std::string_view expected, Operation operation) {
  std::string lent(given);  // borrowed: right behind it nothing may be touched
  DataBuffer b;
  b.borrowData(lent.data(), countOf(given));
  operation(b);
  CHECK(viewOf(b) == expected);
}

void checkUnits(std::string_view s, u16 from, u16 to) {
  std::u16string wide = units(s), kept = wide, replaced = wide;
  const auto bytes = [](const std::u16string& w) {
    return std::string(reinterpret_cast<const char*>(w.data()), w.size() * 2);
  };
  if (from == 0 || to == 0 || s.size() < 2) return;
  const std::string odd(s.substr(wide.size() * 2));
  kept.erase(std::remove(kept.begin(), kept.end(), from), kept.end());
  check(s, bytes(kept), [&](DataBuffer& b) { b.removeCharOccurancesW(from); });
  std::replace(replaced.begin(), replaced.end(), char16_t{from}, char16_t{to});
  check(s, bytes(replaced) + odd, [&](DataBuffer& b) { b.replaceCharW(from, to); });
  const auto chopped = [&](std::size_t at) {
    return bytes(at == wide.npos ? wide : wide.substr(0, at) + std::u16string(1, u'\0'));
  };
  check(s, chopped(wide.find(from)), [&](DataBuffer& b) { b.chopAtFirstCharW(from); });
  check(s, chopped(wide.rfind(from)), [&](DataBuffer& b) { b.chopAtLastCharW(from); });
  for (char16_t& unit : wide) unit = Utf16Case::toUpper(unit);
  check(s, bytes(wide) + odd, [](DataBuffer& b) { b.toUppercaseW(); });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t n) {
  Choices in(data, n);
  const char c = static_cast<char>(in.byte()), to = static_cast<char>(in.byte());
  const std::string given(in.rest());
  if (given.empty()) return 0;
  check(given, unstuffed(given), [](DataBuffer& b) { b.processRawPopMime(); });
  check(given, withoutColours(given), [](DataBuffer& b) { b.stripTerminalColorCodes(); });
  check(given, without({&c, 1}, given), [c](DataBuffer& b) { b.removeByteValue(static_cast<u8>(c)); });
  check(given, std::string(given.rbegin(), given.rend()), [](DataBuffer& b) { b.reverseBytes(); });
  std::string ascii, even, replaced = given;
  for (std::size_t i = 0; i < given.size(); ++i) {
    if (given[i] != 0 && static_cast<u8>(given[i]) < 0x80) ascii += given[i];
    if (i % 2 == 0) even += given[i];
  }
  std::replace(replaced.begin(), replaced.end(), c, to);
  check(given, ascii, [](DataBuffer& b) { b.drop_non_usascii(); });
  check(given, even, [](DataBuffer& b) { b.dropNullBytes(); });
  check(given, replaced, [c, to](DataBuffer& b) { b.replaceChar(c, to); });
  check(given, given, [&](DataBuffer& b) {
    CHECK(b.containsBareCRLF() == hasBare(given) &&
          b.hasLineLonger(static_cast<u8>(to)) == hasLonger(given, static_cast<u8>(to)));
    const std::size_t at = given.find(c);
    CHECK(b.findByte(static_cast<u8>(c)) == (at == given.npos ? nullptr : b.getData2() + at));
    DataBuffer skipped;
    CHECK(skipped.appendSkipNulls(b.getData2(), b.size()) &&
          viewOf(skipped) == without(std::string_view("\0", 1), given));
  });
  checkUnits(given, static_cast<u16>(static_cast<u8>(c) | static_cast<u8>(to) << 8), static_cast<u16>(0x2020 + c));
  return 0;
}

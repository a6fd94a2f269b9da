#include "varnik/services/codecs/internal/EncodingTable.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <iterator>
#include <type_traits>

#include "varnik/services/codecs/Literals.h"
#include "varnik/simd/GatherText.h"

namespace vk_codec {
namespace {

using enum TextCodec;
using enum NameMatch;

constexpr EncodingName kNames[] = {
    {_vkLit_base64(), whole, base64},
    {"base-64", whole, base64},
    {"base64_mime", whole, base64Mime},
    {"base58", whole, base58},
    {"modBase64", whole, modBase64},
    {"base64url", whole, base64Url},
    {"Base32", whole, base32},
    {"qp-", prefix, quotedPrintable},
    {"qp", whole, quotedPrintable},
    {_vkLit_quotedPrintable(), whole, quotedPrintable},
    {_vkLit_hex(), whole, hex},
    {"hexidecimal", whole, hex},
    {"hexlower", whole, hexLower},
    {"hex_lower", whole, hexLower},
    {"hex-lower", whole, hexLower},
    {"base64_crEntity", whole, base64CrEntity},
    {"base64_cr13Entity", whole, base64Cr13Entity},
    {"finger", prefixExactCase, fingerprint},
    {"thumb", prefixExactCase, fingerprint},
    {"declist", whole, decList},
    {"asc", whole, plain},
    {"us-ascii", whole, plain},
    {"usascii", whole, plain},
    {"ascii", whole, plain},
    {_vkLit_ansi(), whole, plain},
    {_vkLit_url(), whole, urlRfc3986},
    {"url_rfc1738", whole, urlRfc1738},
    {"url_rfc2396", whole, urlRfc2396},
    {"url_rfc3986", whole, urlRfc3986},
    {"url_oauth", whole, urlRfc3986},
    {"uu", whole, uu},
    {"B", whole, wordB},
    {"Q", whole, wordQ},
    {"eda", whole, eda},
    {"decimal", whole, decimal},
    {"json", whole, json},
    {"ascii85", whole, ascii85},
    {"base45", whole, base45},
};

constexpr std::string_view kZeros = "leading zero bytes", kTail = "everything from a zero byte on";
constexpr std::string_view kNotUtf8 = "bytes that are no UTF-8";

constexpr CodecFacts kFacts[] = {
    {base64, 1, false, "base64 in one line (RFC 4648)", ""},
    {base64Mime, 1, true, "base64 in lines of 76 characters ended by CR LF (RFC 2045)", ""},
    {base64CrEntity, 1, true, "base64 in lines for XML, CR written as &#xD;", ""},
    {base64Cr13Entity, 1, true, "base64 in lines for XML, CR written as &#13;", ""},
    {base64Url, 20, false, "base64 for URLs and file names, no padding (RFC 4648 section 5)", ""},
    {modBase64, 10, false, "base64 for URLs and file names, padded (RFC 4648 section 5)", ""},
    {base32, 30, false, "base32 (RFC 4648 section 6)", ""},
    {base45, 21, false, "base45, for QR codes (RFC 9285)", ""},
    {base58, 7, false, "base58 in the alphabet of Bitcoin", ""},
    {ascii85, 17, false, "Ascii85 without a frame, z for four zero bytes", ""},
    {hex, 3, false, "hex, upper case", ""},
    {hexLower, 3, false, "hex, lower case", ""},
    {fingerprint, 18, false, "hex, lower case, a colon between bytes", ""},
    {eda, 3, true, "hex to be read aloud: groups of four digits, 16 a line", ""},
    {decList, 23, false, "the decimal values of the bytes, with commas", ""},
    {decimal, 19, false, "all bytes as one decimal number", kZeros},
    {quotedPrintable, 2, true, "quoted-printable (RFC 2045); qp-N for lines of N characters", ""},
    {wordB, 26, true, "encoded words of a mail header, base64 (RFC 2047)", kNotUtf8},
    {wordQ, 26, true, "encoded words of a mail header, quoted (RFC 2047)", kNotUtf8},
    {uu, 37, true, "uuencoded text with its begin and end lines", ""},
    {urlRfc3986, 4, false, "percent-encoding (RFC 3986)", ""},
    {urlRfc1738, 4, false, "percent-encoding (RFC 1738)", ""},
    {urlRfc2396, 4, false, "percent-encoding (RFC 2396)", ""},
    {json, 22, false, "the inside of a JSON string (RFC 8259)", kTail},
    {plain, 6, false, "the bytes as they are", kTail},
};

constexpr bool factsStandInOrder() {
  for (u32 i = 0; i < std::size(kFacts); ++i)
    if (static_cast<u32>(kFacts[i].codec) != i) return false;
  return true;
}
static_assert(factsStandInOrder());

constexpr u8 lowered(char c) {
  return static_cast<u8>(c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c);
}

// The names that begin with one letter form a chain in the table's order: only they can match.
constexpr u8 kEnd = 0xFF;
struct Chains {
  std::array<u8, 26> first;
  std::array<u8, std::size(kNames)> next;
};
constexpr Chains chained() {
  Chains chains{};
  chains.first.fill(kEnd);
  for (u32 i = std::size(kNames); i-- != 0;) {
    u8& first = chains.first[lowered(kNames[i].name[0]) - 'a'];
    chains.next[i] = first;
    first = static_cast<u8>(i);
  }
  return chains;
}
constexpr Chains kChains = chained();

// Where the chain of a name begins. REQUIRES: a name that is not empty.
u8 firstOf(std::string_view name) {
  const u32 letter = lowered(name[0]) - u32{'a'};
  return letter < kChains.first.size() ? kChains.first[letter] : kEnd;
}

// A name of up to 16 characters in two words, which may overlap: names of one length are equal when their words are.
struct Words {
  u64 head, tail;
  bool operator==(const Words&) const = default;
};
template <class Word>
constexpr Word wordAt(const char* p) {
  std::array<char, sizeof(Word)> bytes{};
  if (std::is_constant_evaluated()) {
    std::copy_n(p, sizeof(Word), bytes.begin());
  } else {
    std::memcpy(bytes.data(), p, sizeof(Word));
  }
  return std::bit_cast<Word>(bytes);
}
constexpr Words wordsOf(std::string_view name) {
  const char* const p = name.data();
  const std::size_t n = name.size();
  if (n >= 8) return {wordAt<u64>(p), wordAt<u64>(p + n - 8)};
  if (n >= 4) return {wordAt<u32>(p), wordAt<u32>(p + n - 4)};
  return {static_cast<u8>(p[0]), static_cast<u64>(u32{static_cast<u8>(p[n / 2])} << 8 | static_cast<u8>(p[n - 1]))};
}
constexpr std::array<Words, std::size(kNames)> kWords = [] {
  std::array<Words, std::size(kNames)> words{};
  for (u32 i = 0; i < words.size(); ++i) words[i] = wordsOf(kNames[i].name);
  return words;
}();

// The row of a name that is written as in the table, as most are; null where none is or the name is too long for its
// words. No other row can match such a name first: nothing whole begins with a prefix of the table.
const EncodingName* findAsWritten(std::string_view name) {
  constexpr std::size_t kMost = 16;
  if (name.empty() || name.size() > kMost) return nullptr;
  const Words words = wordsOf(name);
  for (u8 i = firstOf(name); i != kEnd; i = kChains.next[i])
    if (kWords[i] == words && kNames[i].name.size() == name.size() && kNames[i].match == whole) return &kNames[i];
  return nullptr;
}

// REQUIRES: texts of the same length.
bool equalsIgnoreCase(std::string_view a, std::string_view b) {
  for (std::size_t i = 0; i < a.size(); ++i)
    if (lowered(a[i]) != lowered(b[i])) return false;
  return true;
}

bool matches(const EncodingName& row, std::string_view name) {
  if (row.match == whole) return name.size() == row.name.size() && equalsIgnoreCase(name, row.name);
  if (name.size() < row.name.size()) return false;
  const std::string_view head = name.substr(0, row.name.size());
  return row.match == prefix ? equalsIgnoreCase(head, row.name) : head == row.name;
}

// Apart from the search that nearly always ends, which so saves no registers for this one.
[[gnu::noinline]] const EncodingName* findTrimmed(std::string_view name) {
  name = trimmed(name);
  if (name.empty()) return nullptr;
  for (u8 i = firstOf(name); i != kEnd; i = kChains.next[i])
    if (matches(kNames[i], name)) return &kNames[i];
  return nullptr;
}

}  // namespace

std::span<const EncodingName> encodingNames() {
  return kNames;
}

const CodecFacts& factsOf(TextCodec codec) {
  return kFacts[static_cast<u8>(codec)];
}

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && vk_simd::isWhiteSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && vk_simd::isWhiteSpace(text.back())) text.remove_suffix(1);
  return text;
}

std::string_view trimmed(const char* text) {
  return text ? trimmed(std::string_view(text)) : std::string_view();
}

const EncodingName* findEncodingName(std::string_view name) {
  const EncodingName* const row = findAsWritten(name);
  return row ? row : findTrimmed(name);
}

s32 decoderIdForName(std::string_view name) {
  const EncodingName* const row = findEncodingName(name);
  return row ? factsOf(row->codec).decoderId : 0;
}

}  // namespace vk_codec

// Any text under every id: what was held stays, an empty and a filled buffer get the same bytes, a fault lies inside
// the text, and a text that is accepted is the one that its bytes encode to, but for white space, padding and letter
// case.
#include <algorithm>

#include "fuzz/Fuzz.h"
#include "varnik/encoding/internal/DecodeText.h"

namespace {

constexpr s32 kPages[] = {1252, 932, 1200, 65000, 50220, 65001, 0x7FFFFFFF, -5};

constexpr struct {
  s32 id;
  const char* name;
  std::string_view skipped;
  bool ignoresCase;
} kCanonical[] = {
    {1, "base64", " \t\n\v\f\r=", false}, {20, "base64", " \t\n\v\f\r=", false}, {3, "hex", " \t\n\v\f\r", true},
    {30, "base32", " \t\n\v\f\r=", true}, {7, "base58", " \t\n\v\f\r", false},   {21, "base45", "\t\n\r", false},
};

void checkCanonical(s32 id, const std::string& text, const DataBuffer& bytes) {
  for (const auto& row : kCanonical) {
    if (row.id != id || text.find('&') != text.npos) continue;  // base64 skips references
    std::string left = without(row.skipped, text);
    StringBuffer encoded;
    CHECK(bytes.encodeDB(row.name, encoded));
    if (row.ignoresCase)
      std::transform(left.begin(), left.end(), left.begin(), [](char c) { return c >= 'a' ? c - 32 : c; });
    if (id == 20) std::replace(left.begin(), left.end(), '-', '+'), std::replace(left.begin(), left.end(), '_', '/');
    CHECK(left == without("=", viewOf(encoded)));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size) {
  Choices in(data, size);
  const u32 choice = in.byte() % 46;
  const s32 id = choice < 38 ? static_cast<s32>(choice) : kPages[choice - 38];
  const std::string_view rest = in.rest();
  const std::string text(rest.substr(0, rest.find('\0')));

  DataBuffer empty, filled, told;
  filled.append("held", 4);
  const bool done = empty.appendEncodedById(text.c_str(), id), doneToo = filled.appendEncodedById(text.c_str(), id);
  CHECK(viewOf(filled).substr(0, 4) == "held" && viewOf(filled).substr(4) == viewOf(empty));
  CHECK(done == doneToo || id == 1 || id == 10 || id == 20 || id == 24);
  if (text.empty()) return 0;
  const DecodeResult result = vk_decodeText(id, text.c_str(), countOf(text), told);
  CHECK(viewOf(told) == viewOf(empty) && (result.ok == done || result.badAt != kNoFault));
  CHECK(result.badAt == kNoFault || result.badAt <= text.size());  // at the end of one that holds nothing
  if (done) checkCanonical(id, text, empty);
  return 0;
}

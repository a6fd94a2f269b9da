// XML into UTF-8: against a plain telling of the same steps, the converter being the library's own.
#include "fuzz/Fuzz.h"

namespace {

bool converted(s32 page, const std::string& from, std::string& to) {
  LogNull log;
  DataBuffer out;
  const bool done = _vkEncodingConvert().EncConvert(page, 65001, bytesOf(from), countOf(from), out, log);
  to = viewOf(out);
  return done;
}

/// The text of the declaration's encoding in canonical form; empty where there is none that counts.
std::string declared(const std::string& all, bool isZeroHead) {
  const std::string text = all.c_str();
  const std::size_t start = text.find("<?xml"), end = text.find('>', start);
  if (start == text.npos || end == text.npos) return {};
  std::string head = without(" ", text.substr(start, end - start));
  for (char& c : head) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
  std::size_t at = head.find("encoding=\"");
  if (at == head.npos) at = head.find("encoding='");
  if (at == head.npos) return {};
  std::size_t close = head.find('"', at + 10);
  if (close == head.npos) close = head.find('\'', at + 10);
  if (close == head.npos || close == at + 10) return {};
  StringBuffer name(head.substr(at + 10, close - at - 10).c_str());
  if (!CharsetNames::canonicalizeCharset(name) || name.equalsIgnoreCase("utf-8")) return {};
  return name.equals("utf-16") && !isZeroHead ? std::string() : std::string(viewOf(name));
}

std::string model(const std::string& s) {
  std::string out;
  if (s.starts_with("\xEF\xBB\xBF")) return s.substr(3);
  if (s.starts_with("\xFE\xFF")) return converted(1201, s, out), out;
  if (s.starts_with("\xFF\xFE")) return converted(1200, s, out), out;
  const bool hasZero = s.size() >= 5 && s.substr(0, 200).find('\0') != s.npos;
  if (hasZero) {
    const auto zeros = [&](u32 a, u32 b) { return s[a] == 0 && s[b] == 0; };
    if (zeros(1, 3) && converted(1200, s, out)) return out;
    if (zeros(0, 2) && converted(1201, s, out)) return out;
    if (zeros(0, 1) && converted(12001, s, out)) return out;
    if (zeros(2, 3) && converted(12000, s, out)) return out;
  }
  StringBuffer name(declared(s, hasZero).c_str());
  if (name.isEmpty()) return s;
  LogNull log;
  DataBuffer made;
  _vkEncodingConvert().ChConvert2(name, 65001, bytesOf(s), countOf(s), made, log);
  return std::string(viewOf(made));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t n) {
  const std::string given(Choices(data, n).rest());
  DataBuffer b;
  b.append(given.data(), countOf(given));
  StringBuffer charset("held");
  LogNull log;
  const bool named = b.getXmlCharset(charset);
  CHECK(viewOf(b) == given && (given.empty() ? charset.equals("held") : named == !charset.isEmpty()));
  if (named) CHECK(given.find("encoding") != given.npos && given.find(charset.getString()) != given.npos);
  CHECK(b.convertXmlToUtf8(log) == !given.empty() && viewOf(b) == model(given));
  return 0;
}

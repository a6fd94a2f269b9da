// Conversions between charsets, beside ICU. A count is the bytes of the text in the charset that it comes in.
#include <unicode/ucnv.h>
#include <unicode/ustring.h>

#include <memory>

#include "bench/Bench.h"
#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/charset/EncodingConvert.h"

namespace {

// Words of English, of English with French and German ones, and of many scripts, about `n` bytes of UTF-8.
std::string text(const std::string& kind, std::size_t n) {
  static const std::vector<std::string> kPlain = {"the", "buffer", "of",        "a", "header",
                                                  "in",  "line",   "character", "is"};
  static const std::vector<std::string> kAccents = {"caf\u00E9", "na\u00EFve", "gr\u00F6\u00DFe", "\u00FCber",
                                                    "d\u00E9j\u00E0"};
  static const std::vector<std::string> kScripts = {"\u0442\u0435\u043A\u0441\u0442",
                                                    "\u03BC\u03AE\u03BD\u03C5\u03BC\u03B1",
                                                    "\u7F13\u51B2\u533A",
                                                    "\u6587\u672C",
                                                    "\u30C6\u30AD\u30B9\u30C8",
                                                    "\u20AC\u2014\u2026",
                                                    "\U0001F600"};
  static const std::vector<std::string> kJapanese = {"\u6587\u5B57", "\u3067\u3059", "\u306E", "\u65E5\u672C\u8A9E",
                                                     "\u30D0\u30A4\u30C8"};
  const auto& others = kind == "latin" ? kAccents : kind == "japanese" ? kJapanese : kScripts;
  std::mt19937 next(1);
  std::string out;
  while (out.size() < n) {
    const auto pick = next();
    const bool plain = kind == "ascii" || pick % 2 == 0;
    out += plain ? kPlain[pick / 2 % kPlain.size()] : others[pick / 2 % others.size()];
    out += ' ';
  }
  return out;
}

using Bytes = std::string;

Bytes converted(s32 from, s32 to, const Bytes& source) {
  DataBuffer out;
  LogNull log;
  _vkEncodingConvert().EncConvert(from, to, reinterpret_cast<const u8*>(source.data()), static_cast<u32>(source.size()),
                                  out, log);
  return {reinterpret_cast<const char*>(out.getData2()), out.getSize()};
}

// ICU's converters, opened once; straight from one to the other.
void addIcu(const std::string& operation, const char* from, const char* to, const Bytes& source) {
  UErrorCode error = U_ZERO_ERROR;
  const std::shared_ptr<UConverter> reader(ucnv_open(from, &error), ucnv_close);
  const std::shared_ptr<UConverter> writer(ucnv_open(to, &error), ucnv_close);
  if (U_FAILURE(error)) return;
  bench::add(operation, source.size(), "icu", [=, out = Bytes(source.size() * 3 + 16, '\0')]() mutable {
    UErrorCode failed = U_ZERO_ERROR;
    UChar pivot[1024], *pivotFrom = pivot, *pivotTo = pivot;
    const char* in = source.data();
    char* at = out.data();
    ucnv_convertEx(writer.get(), reader.get(), &at, at + out.size(), &in, in + source.size(), pivot, &pivotFrom,
                   &pivotTo, pivot + 1024, true, true, &failed);
    return at;
  });
}

// ICU's shorter road from UTF-16 of the processor's order.
void addDirect(const std::string& operation, const Bytes& source) {
  bench::add(operation, source.size(), "u_strToUTF8", [=, out = Bytes(source.size() * 2, '\0')]() mutable {
    UErrorCode failed = U_ZERO_ERROR;
    int32_t n = 0;
    u_strToUTF8(out.data(), static_cast<int32_t>(out.size()), &n, reinterpret_cast<const UChar*>(source.data()),
                static_cast<int32_t>(source.size() / 2), &failed);
    return n;
  });
}

void addAll(const std::string& name, s32 from, s32 to, const char* icuFrom, const char* icuTo,
            const std::vector<std::string>& kinds) {
  for (const std::string& kind : kinds)
    for (const std::size_t n : {std::size_t{64}, std::size_t{512}, std::size_t{4} << 10, std::size_t{1} << 20}) {
      const Bytes source = converted(65001, from, text(kind, n));
      const std::string operation = name + ":" + kind;
      const auto out = std::make_shared<DataBuffer>();
      bench::add(operation, source.size(), "varnik", [=] {
        out->clear();
        LogNull log;
        return _vkEncodingConvert().EncConvert(from, to, reinterpret_cast<const u8*>(source.data()),
                                               static_cast<u32>(source.size()), *out, log);
      });
      addIcu(operation, icuFrom, icuTo, source);
      if (from == 1200) addDirect(operation, source);
    }
}

}  // namespace

int main(int argc, char** argv) {
  addAll("utf16le_to_utf8", 1200, 65001, "UTF-16LE", "UTF-8", {"ascii", "latin", "mixed"});
  addAll("utf16be_to_utf8", 1201, 65001, "UTF-16BE", "UTF-8", {"ascii", "mixed"});
  addAll("utf32le_to_utf8", 12000, 65001, "UTF-32LE", "UTF-8", {"ascii", "mixed"});
  addAll("utf8_to_utf16le", 65001, 1200, "UTF-8", "UTF-16LE", {"ascii", "latin", "mixed"});
  addAll("latin1_to_utf8", 28591, 65001, "ISO-8859-1", "UTF-8", {"ascii", "latin"});
  addAll("cp1252_to_utf8", 1252, 65001, "windows-1252", "UTF-8", {"ascii", "latin"});
  addAll("utf8_to_cp1252", 65001, 1252, "UTF-8", "windows-1252", {"ascii", "latin"});
  addAll("sjis_to_utf8", 932, 65001, "windows-932", "UTF-8", {"ascii", "japanese"});
  return bench::run(argc, argv);
}

#include "tests/faults/Operations.h"

namespace faults {
namespace {

std::string wide(std::string_view ascii) {
  std::string units;
  for (const char c : ascii) units += {c, '\0'};
  return units;
}

const std::string kDeclared = "<?xml version='1.0' encoding='koi8-r'?><a>\xC1\xC2</a>" + std::string(900, '\xD0');
const std::string kLatin = "<?xml version='1.0' encoding='iso-8859-1'?><a>\xE9</a>" + std::string(30000, '\xE9');

/// An operation on `buffer` that holds a text of its own.
template <class Call>
Operation on(std::string what, const std::string& text, Call call) {
  return row(std::move(what), Leaves::kAnything, [text, call](Scene& s) {
    s.buffer.clear();
    return s.buffer.append(text.data(), countOf(text)) && call(s);
  });
}

bool convertXml(Scene& s) {
  return s.buffer.convertXmlToUtf8(s.log);
}

/// Replaces in UTF-16; the result may be cut short, by the contracts.
template <class Replace>
Operation replacing(const char* what, const char* find, Replace replace) {
  return alwaysTrue(on(what, wide("held before"), [=](Scene& s) {
    XString found, with;
    if (!found.setFromUtf8(find) || !with.setFromUtf8("a longer text")) return false;
    const u32 before = s.buffer.getSize(), count = (s.buffer.*replace)(found, with);
    EXPECT_EQ(count != 0, s.buffer.getSize() != before);
    return count != 0;
  }));
}

}  // namespace

std::vector<Operation> textOperations() {
  return {
      op("appendSkipNulls", [](Scene& s) { return s.buffer.appendSkipNulls(s.source.getData2(), 5000); }),
      alwaysTrue(
          on("replaceAllOccurances", "held before",
             [](Scene& s) { return s.buffer.replaceAllOccurances(bytesOf("e"), 1, s.source.getData2(), 5000) != 0; })),
      replacing("replaceUnicodeString", "e", &DataBuffer::replaceUnicodeString),
      replacing("replaceAllOccurancesUtf16NoCase", "E", &DataBuffer::replaceAllOccurancesUtf16NoCase),
      // What the converter answers is not told.
      alwaysTrue(on("convertXmlToUtf8 of KOI8-R", kDeclared, convertXml)),
      alwaysTrue(on("convertXmlToUtf8 of Latin-1", kLatin, convertXml)),
      alwaysTrue(on("convertXmlToUtf8 of Shift_JIS", "<?xml encoding=\"shift_jis\"?>\x93\xFA", convertXml)),
      alwaysTrue(on("convertXmlToUtf8 of UTF-16", wide("<?xml version='1.0'?>"), convertXml)),
      alwaysTrue(on("convertXmlToUtf8 by a mark", "\xFF\xFE" + wide("<?xml version='1.0'?>"), convertXml)),
      on("getXmlCharset", kDeclared, [](Scene& s) { return s.buffer.getXmlCharset(s.text); }),
      alwaysTrue(on("isReallyUtf8", "caf\xC3\xA9", [](Scene& s) { return s.buffer.isReallyUtf8(932); })),
      on("toXString", kLatin, [](Scene& s) { return s.buffer.toXString("iso-8859-1", s.wide), !s.wide.isEmpty(); }),
      on("toXString of GB18030", kLatin,
         [](Scene& s) { return s.buffer.toXString("gb18030", s.wide), !s.wide.isEmpty(); }),
      on("cvUnicodeToUtf8", wide(kDeclared),
         [](Scene& s) { return s.buffer.cvUnicodeToUtf8(s.text), !s.text.isEmpty(); }),
      alwaysTrue(on("cvUnicodeToUtf8_db", wide(kDeclared),
                    [](Scene& s) { return s.buffer.cvUnicodeToUtf8_db(s.source), s.text.append(s.source); })),
      op("appendNullTerminatedUtf16_xe",
         [](Scene& s) { return s.buffer.appendNullTerminatedUtf16_xe(reinterpret_cast<const u8*>(u"text")); }),
      op("appendNullTerminatedUtf32_xe", [](Scene& s) { return s.buffer.appendNullTerminatedUtf32_xe(nullptr); }),
  };
}

}  // namespace faults

// XML documents in many charsets, made by the C library's converter, into UTF-8.

#include "tests/services/CharsetSupport.h"

namespace {

const std::string kBody = "<stra\u00DFe n=\"1\">\u00E9\u00E8</stra\u00DFe>\n";

std::string document(std::string_view declared) {
  return declared.empty() ? kBody : "<?xml version=\"1.0\" " + std::string(declared) + "?>\n" + kBody;
}

// UTF-8, and the charset that it is given in, behind a mark.
const struct {
  const char *why, *mark;
  s32 page;
  std::string text;
} kConverted[] = {
    {"a UTF-16BE mark outdoes the declaration", "FEFF", 1201, document("encoding='koi8-r'")},
    {"a UTF-16LE mark", "FFFE", 1200, document("")},
    {"a mark and nothing else", "FFFE", 1200, ""},
    {"UTF-16LE by its zero bytes", "", 1200, document("encoding='utf-16'")},
    {"UTF-16BE by its zero bytes", "", 1201, document("")},
    {"a UTF-8 mark is all that goes", "EFBBBF", 65001, document("encoding='iso-8859-1'")},
    {"six bytes with zeros", "", 1200, "ABC"},
    {"latin 1", "", 28591, document("encoding=\"ISO-8859-1\"")},
    {"blanks and upper case", "", 1252, document("ENCODING = 'Windows-1252'")},
    {"ibm, single quotes", "", 850, document("encoding='IBM850'")},
    {"the declaration may stand anywhere", "", 28591, "\n\n <a/><?xml encoding='latin1'?>\u00E9"},
};

const std::pair<const char*, std::string> kKept[] = {
    {"two bytes of a UTF-8 mark are none", "\xEF\xBB<a/>"},
    {"five bytes with zeros", fromHex("4100420043")},
    {"four bytes with zeros", fromHex("41004200")},
    {"the value runs to a later double quote", convert(65001, 1252, document("encoding='cp1252' x=\"y\"")).text},
    {"a tab is no blank", "<?xml encoding\t='latin1'?>\xE9"},
    {"behind a zero byte it is not found", std::string(200, ' ') + '\0' + "<?xml encoding='latin1'?>\xE9"},
    {"UTF-8 declared", document("encoding='UTF-8'") + "\xFF"},
    {"UTF-16 declared but not so", document(" encoding = \"Utf-16\"")},
    {"unknown charset", document("encoding='klingon'")},
    {"no encoding", document("standalone='yes'")},
    {"no value", document("encoding=''")},
    {"no end of the value", "<?xml encoding='latin1?>\xE9"},
    {"no end of the declaration", "<?xml encoding='latin1'\xE9"},
    {"no declaration", "<a>\xE9</a>"},
    {"empty", ""},
};

void expectConverted(const char* why, const std::string& given, const std::string& want) {
  DataBuffer b = bufferOf(given);
  b.ensureBuffer(1);
  EXPECT_TRUE(b.convertXmlToUtf8(nowhere)) << why;
  EXPECT_EQ(textOf(b), want) << why;
}

TEST(XmlCharset, ConvertsByMarkByZeroBytesAndByDeclaration) {
  for (const auto& c : kConverted)
    expectConverted(c.why, fromHex(c.mark) + convert(65001, c.page, c.text).text, c.text);
  for (const auto& [why, given] : kKept) expectConverted(why, given, given);
  expectConverted("a mark before half a unit", fromHex("FFFE 4100 42"), "A\uFFFD");
  const std::string odd("<?xml encoding='utf-16'?>x\0z", 28), wide = convert(65001, 12001, document("")).text;
  expectConverted("UTF-16 declared, zero bytes, no form fits: by name", odd, convert(1200, 65001, odd).text);
  expectConverted("UTF-32BE", wide, convert(1201, 65001, wide).text);
}

TEST(XmlCharset, EveryCharsetThatIsDeclared) {
  for (const auto& [name, text] : {std::pair{"Shift_JIS", "\u8868\u793A"},
                                   {"EUC-JP", "\u8868\u793A"},
                                   {"KOI8-R", "\u041F\u0440\u0438"},
                                   {"windows-1251", "\u041F\u0440\u0438"},
                                   {"GB18030", "\u7F13\u51B2"},
                                   {"Big5", "\u7DE9\u885D"},
                                   {"EUC-KR", "\uD55C\uAD6D"},
                                   {"ISO-2022-JP", "\u8868\u793A"},
                                   {"iso-8859-7", "\u039C\u03AE"}}) {
    const std::string whole = "<?xml version='1.0' encoding='" + std::string(name) + "'?><a>" + text + "</a>";
    expectConverted(name, byIconv("UTF-8", name, whole).text, whole);
  }
}

TEST(XmlCharset, WorksOnBorrowedStorageButNotWithoutAny) {
  DataBuffer none;
  EXPECT_FALSE(none.convertXmlToUtf8(nowhere) || none.getData2());
  std::string text = convert(65001, 28591, document("encoding='latin1'")).text, before = text;
  DataBuffer b = borrowing(text);
  LogText log;
  log.setVerbose(true);
  EXPECT_TRUE(b.convertXmlToUtf8(log));
  EXPECT_NE(std::string(log.getText()).find("charset: iso-8859-1"), std::string::npos);
  EXPECT_EQ(textOf(b), document("encoding='latin1'"));
  EXPECT_EQ(text, before);
}

const std::pair<const char*, std::vector<const char*>> kDeclared[] = {
    {"UTF-8", {"<?xml version=\"1.0\" encoding \r\n=\t\n \"UTF-8\"?>"}},
    {"Word", {"<a>the encoding of it = 'Word'</a>"}},
    {"Plain", {"encoding=Plain\" x"}},
    {"both", {"encoding=\"'both'"}},
    {nullptr,
     {"encoding='\"x\"", "<a>encoding</a>", "encoding=", "encoding= \t", "encoding=\"", "encoding=\"latin1",
      "encoding=\"\"", "Encoding='x'", ""}},
};

TEST(XmlCharset, ReadsTheDeclaredCharsetAsWritten) {
  for (const auto& [charset, texts] : kDeclared)
    for (const char* text : texts) {
      StringBuffer name("before"), again("before");
      EXPECT_EQ(DataBuffer::getXmlCharset2(text, name), charset != nullptr) << text;
      EXPECT_EQ(textOf(name), charset ? charset : "") << text;
      DataBuffer b = bufferOf(text);
      EXPECT_EQ(b.getXmlCharset(again), charset != nullptr) << text;
      EXPECT_EQ(textOf(again), b.empty() ? "before" : textOf(name));
      EXPECT_EQ(textOf(b), text);
    }
  DataBuffer full = bufferOf("encoding='x'");
  full.minimizeMemoryUsage();
  full.reallocate(full.getSize() + 1);
  full.appendChar('y');
  const faults::FailAllocation all(1, true);
  StringBuffer name;
  EXPECT_FALSE(full.getXmlCharset(name));
  EXPECT_EQ(full.getSize(), 13u);
}

}  // namespace

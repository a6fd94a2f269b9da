// The work of an operation grows as its input does. Bytes and blocks allocated may grow 2.2 times for twice the input,
// taken over six doublings because growth comes in steps.

#include <cmath>

#include "tests/support/Test.h"
#include "varnik/services/codecs/internal/EncodingTable.h"

namespace {

struct Work {
  std::string what, unit;  // the input repeats the unit; it is random where there is none
  std::function<void(const std::string&)> run;
  bool isLinear = true;  // else n log^2 n, for large numbers; or it grows by the buffer's own steps
};

template <class Call>
auto onBuffer(Call call) {
  return [call](const std::string& input) mutable {
    std::string lent = input;
    DataBuffer b = borrowing(lent);
    call(b);
  };
}

std::vector<Work> textWorks() {
  const auto xml = onBuffer([](DataBuffer& b) { b.convertXmlToUtf8(nowhere); });
  const auto search = [](std::string pattern) {
    return onBuffer([pattern](DataBuffer& b) { b.findBytes(bytesOf(pattern), static_cast<s32>(pattern.size())); });
  };
  return {
      {"convertXmlToUtf8", "<?xml encoding=", xml},
      {"convertXmlToUtf8", "<?xml encoding='koi8-r'?>\xC1", xml},
      {"getXmlCharset",
       "encoding = ", onBuffer([name = StringBuffer()](DataBuffer& b) mutable { b.getXmlCharset(name); })},
      {"stripTerminalColorCodes", "\x1b[", onBuffer([](DataBuffer& b) { b.stripTerminalColorCodes(); })},
      {"stripTerminalColorCodes", "\x1b\x37\x1b[r", onBuffer([](DataBuffer& b) { b.stripTerminalColorCodes(); })},
      {"processRawPopMime", "\n..", onBuffer([](DataBuffer& b) { b.processRawPopMime(); })},
      {"consumeUtf8CombiningMarks", "e\xCC\x81", onBuffer([](DataBuffer& b) { b.consumeUtf8CombiningMarks(); })},
      {"findBytes", "a", search(std::string(40, 'a') + "b")},
      {"findBytes", "ab", search("b" + std::string(40, 'a'))},
      {"replaceAllOccurances", "ab",
       onBuffer([](DataBuffer& b) { b.replaceAllOccurances(bytesOf("a"), 1, bytesOf("c"), 1); })},
      {"StringBuffer::replaceAllOccurances", "ab",
       [](const std::string& input) {
         StringBuffer text;
         text.appendN(input.data(), countOf(input));
         text.replaceAllOccurances("a", "longer");
       }},
      {"queue", "x",
       [](const std::string& input) {
         DataBufferView view;
         u8 out[100];
         view.append(input.data(), countOf(input));
         while (view.takeBytes(sizeof out, out)) {
         }
       }},
      {"charset", "caf\xC3\xA9 \xE6\x97\xA5", onBuffer([](DataBuffer& b) {
         DataBuffer out;
         for (const s32 page : {1252, 932, 1200, 54936, 65000, 50220}) {
           out.clear();
           _vkEncodingConvert().EncConvert(65001, page, b.getData2(), b.size(), out, nowhere);
         }
       })},
  };
}

std::vector<Work> works() {
  std::vector<Work> all = textWorks();
  for (const auto& row : vk_codec::encodingNames()) {
    const std::string name(row.name);
    const bool isLinear = name != "decimal" && name != "base58";
    const auto encode = [name](const std::string& bytes) {
      StringBuffer text;
      DataBuffer::encodeDB2(name.c_str(), bytesOf(bytes), countOf(bytes), text);
    };
    const auto decode = [name](const std::string& text) { DataBuffer().appendEncoded(text.c_str(), name.c_str()); };
    for (const char* unit : {"", " \r\n"}) all.push_back({"encode " + name, unit, encode, isLinear});
    for (const char* unit : {"1", "=?", "=?utf-8?Q?a?= ", "begin 644 x\n", "&#xD;", "%4\\u1=\r\n", "256 ,"})
      all.push_back({"decode " + name, unit, decode, isLinear && name != "declist"});
  }
  return all;
}

TEST(Work, AllocatesInProportion) {
  for (const Work& work : works()) {
    double blocks[2], bytes[2];
    for (u32 i = 0; i < 2; ++i) {
      const std::size_t n = std::size_t{20'000} << 6 * i;
      const std::string input = work.unit.empty() ? randomBytes(n) : repeated(work.unit, n);
      work.run(input.substr(0, 10));  // what the services keep is made
      const faults::Tally before = faults::tally;
      work.run(input);
      blocks[i] = static_cast<double>(faults::tally.blocks - before.blocks);
      bytes[i] = static_cast<double>(faults::tally.bytes - before.bytes);
    }
    const double most = std::pow(work.isLinear ? 2.2 : 3.0, 6);
    EXPECT_LE(blocks[1], most * blocks[0] + 4) << work.what << " of " << work.unit;
    EXPECT_LE(bytes[1], most * bytes[0] + 25'000) << work.what << " of " << work.unit;
  }
}

}  // namespace

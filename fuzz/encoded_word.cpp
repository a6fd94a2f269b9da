// Encoded words of both forms: short enough, each of whole characters, and back; any header text decodes without harm.
#include "fuzz/Fuzz.h"

namespace {

void checkWords(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find("\r\n ", at), text.size());
    const StringBuffer word(std::string(text.substr(at, end - at)).c_str());
    DataBuffer out;
    LogNull log;
    CHECK(word.getSize() <= 75 && word.beginsWith("=?utf-8?") && word.getSize() == end - at);
    CHECK(ContentEncoder::decodeId26(word, out, log) && isUtf8(viewOf(out)));
    at = end + 3;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t n) {
  Choices in(data, n);
  const bool isB = in.byte() % 2 != 0;
  const std::string_view given = in.rest();
  StringBuffer text, header;
  LogNull log;
  CHECK(
      (isB ? ContentEncoder::encodeWordB : ContentEncoder::encodeWordQ)(bytesOf(given), countOf(given), "utf-8", text));
  if (isUtf8(given)) {
    checkWords(viewOf(text));
    DataBuffer back;
    CHECK(ContentEncoder::decodeId26(text, back, log) && viewOf(back) == given);
  }
  DataBuffer first, second;
  header.appendN(given.data(), countOf(given));
  const bool done = ContentEncoder::decodeId26(header, first, log);
  second.append("held", 4);
  CHECK(ContentEncoder::decodeId26(header, second, log) == done && viewOf(second).substr(4) == viewOf(first));
  if (given.find("=?") == given.npos) CHECK(viewOf(first) == given);
  return 0;
}

// Uuencoded text: back to the same bytes with any mode and name that a line can hold, also with CR LF and with the
// blanks at the lines' ends lost; any text decodes without harm.
#include "fuzz/Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t n) {
  Choices in(data, n);
  const u8 how = in.byte();
  const std::string name = without(std::string_view("\0\r\n", 3), in.bytes(how % 16));
  const std::string_view given = in.rest();
  DataBuffer bytes, back, free;
  StringBuffer text;
  LogNull log;
  bytes.append(given.data(), countOf(given));
  CHECK(Uu().uu_encode(bytes, how % 2 != 0 ? "0755" : "", name.c_str(), text));
  if (how & 32) text.replaceAllOccurances("\n", "\r\n");
  if (how & 64) text.replaceAllOccurances("`", " ");
  if (how & 128)
    for (u32 before = 0; before != text.getSize();) before = text.getSize(), text.replaceAllOccurances(" \n", "\n");
  CHECK(ContentEncoder::decodeId37(text.getString(), back, log) && viewOf(back) == given);

  const std::string any = "begin 644 x\n" + std::string(given);
  ContentEncoder::decodeId37(any.c_str(), free, log);
  CHECK(free.size() <= any.size() * 63);  // a count promises as much, and blanks may have been lost
  free.clear();
  ContentEncoder::decodeId37(any.c_str() + 12, free, log);
  return 0;
}

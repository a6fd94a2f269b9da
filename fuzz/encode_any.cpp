// Bytes under every name of an encoding: what comes out is appended, and is read back under the same name.
#include <algorithm>

#include "fuzz/Fuzz.h"
#include "varnik/services/codecs/internal/EncodingTable.h"

namespace {

using vk_codec::TextCodec;

/// What a name can carry of some bytes; false when that is not said.
bool carries(TextCodec codec, std::string& bytes) {
  switch (codec) {
    case TextCodec::json:
    case TextCodec::plain:
      return bytes.find('\0') == bytes.npos;
    case TextCodec::wordB:
    case TextCodec::wordQ:
      return isUtf8(bytes);
    case TextCodec::decimal:
      bytes.erase(0, std::min(bytes.find_first_not_of('\0'), bytes.size()));
      if (bytes.empty()) bytes.assign(1, '\0');
      return true;
    default:
      return true;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t n) {
  Choices in(data, n);
  const auto names = vk_codec::encodingNames();
  const auto& row = names[in.byte() % names.size()];
  std::string name(row.name);
  if (row.match != vk_codec::NameMatch::whole) name += std::to_string(in.byte() % 100);
  const std::string_view given = in.rest();

  StringBuffer text, behind("=");
  CHECK(DataBuffer::encodeDB2(name.c_str(), bytesOf(given), countOf(given), text));
  CHECK(DataBuffer::encodeDB2(name.c_str(), bytesOf(given), countOf(given), behind));
  CHECK(viewOf(behind).substr(1) == viewOf(text) && viewOf(behind)[0] == '=');

  std::string carried(given);
  if (!carries(row.codec, carried)) return 0;
  DataBuffer decoded;
  CHECK(decoded.appendEncoded(text.getString(), name.c_str()));
  CHECK(viewOf(decoded) == carried);
  CHECK(decoded.appendEncoded(text.getString(), (" " + name + "\t").c_str()) && viewOf(decoded) == carried + carried);
  return 0;
}

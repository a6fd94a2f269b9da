#include "tests/faults/Operations.h"
#include "varnik/services/codecs/internal/EncodingTable.h"

namespace faults {
namespace {

using enum vk_codec::TextCodec;

/// What a caller would write for a row of the table of names.
std::string nameOf(const vk_codec::EncodingName& row) {
  const std::string name(row.name);
  return row.match == vk_codec::NameMatch::whole ? name : row.codec == quotedPrintable ? name + "40" : name + "print";
}

/// Text that every encoding carries there and back: no zero byte, valid UTF-8, much to escape.
std::string sampleOf(u32 n) {
  return ("=?" + repeated("caf\xC3\xA9 \"x\"\r\n\t=3D \xE2\x82\xAC%41\x01~", n)).substr(0, n);
}

std::string encoded(const std::string& name, const std::string& bytes) {
  StringBuffer text;
  DataBuffer::encodeDB2(name.c_str(), bytesOf(bytes), countOf(bytes), text);
  return textOf(text);
}

// Their encoders answer true whatever became of the appends.
const std::set<vk_codec::TextCodec> kEncodeAlwaysTrue = {hex,        hexLower,   fingerprint, urlRfc3986,
                                                         urlRfc1738, urlRfc2396, decimal};
// Their decoders do, or answer by their last step alone; those of Base64 where bytes were held before.
const std::set<vk_codec::TextCodec> kDecodeAlwaysTrue = {base64,     base64Mime, base64CrEntity, base64Cr13Entity,
                                                         base64Url,  modBase64,  fingerprint,    decList,
                                                         urlRfc3986, urlRfc1738, urlRfc2396,     json};

}  // namespace

std::vector<Operation> encodingOperations() {
  std::vector<Operation> all;
  for (const auto& row : vk_codec::encodingNames())
    for (const u32 n : {1u, 60u, 900u, 3000u, 9000u}) {
      const std::string name = nameOf(row), bytes = sampleOf(n), text = encoded(name, bytes);
      Operation encode = extending(
          "encode " + name, [=](Scene& s) { return DataBuffer::encodeDB2(name.c_str(), bytesOf(bytes), n, s.text); });
      encode.answersTruly = !kEncodeAlwaysTrue.contains(row.codec);
      Operation decode =
          extending("decode " + name, [=](Scene& s) { return s.buffer.appendEncoded(text.c_str(), name.c_str()); });
      decode.answersTruly = !kDecodeAlwaysTrue.contains(row.codec);
      all.push_back(encode);
      all.push_back(decode);
    }
  const std::vector<Operation> others = {
      extending("encodeDB", [](Scene& s) { return s.source.encodeDB("base64", s.text); }),
      extending("getEncodedRange", [](Scene& s) { return s.source.getEncodedRange("qp", 7, 900, s.text); }),
      alwaysTrue(parsing("parseDataEnc",
                         [](Scene& s, u32& cursor) { return s.source.parseDataEnc(cursor, 900, "base64", s.text); })),
      extending("decode words in text",
                [text = std::string(30'000, 'x') + "=?utf-8?q?word?=" + std::string(30'000, 'y')](Scene& s) {
                  return s.buffer.appendEncoded(text.c_str(), "q");
                }),
      alwaysTrue(extending("appendDecList", [](Scene& s) { return s.buffer.appendDecList("1, 2 3,255"); })),
      extending("toHexString", [](Scene& s) { s.source.toHexString(s.text); }),
      extending("toHexLines", [](Scene& s) { s.source.toHexLines(s.text, 16); }),
      extending("jsonEscape",
                [](Scene& s) { return s.text.append("\"\x01\x02\x03\x04\x05\x06\x07\x08") && s.text.jsonEscape(); }),
      extending("jsonDecode", [](Scene& s) { return StringBuffer::jsonDecode(R"(ab\u00e9\ud83d\ude00)", 20, s.text); }),
      extending("hexStringToBinary",
                [](Scene& s) {
                  StringBuffer digits;
                  return digits.append("00 11 22 aB") && digits.hexStringToBinary(s.buffer);
                }),
      alwaysTrue(extending("LogText",
                           [](Scene& s) {
                             LogText log;
                             log.LogError("an error that is kept");
                             log.LogDataHex("bytes", s.source.getData2(), 40);
                             return log.numErrors() == 1 && s.text.append(log.getText());
                           })),
      extending("view logViewData",
                [](Scene& s) {
                  LogText log;
                  s.view.logViewData("tag", true, log);
                }),
  };
  all.insert(all.end(), others.begin(), others.end());
  return all;
}

}  // namespace faults

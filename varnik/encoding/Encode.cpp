// Bytes as text, by the name of the encoding.
#include <algorithm>

#include "varnik/buffer/DataBuffer.h"
#include "varnik/encoding/internal/HexText.h"
#include "varnik/encoding/internal/SelfAlias.h"
#include "varnik/services/codecs/ContentEncoder.h"
#include "varnik/services/codecs/Literals.h"
#include "varnik/services/codecs/TextScan.h"
#include "varnik/services/codecs/UrlCodec.h"
#include "varnik/services/codecs/Uu.h"
#include "varnik/services/codecs/internal/Base64Lines.h"
#include "varnik/services/codecs/internal/EncodeInner.h"
#include "varnik/services/codecs/internal/EncodingTable.h"
#include "varnik/services/numbers/MpIntConvert.h"
#include "varnik/services/strings/StringBuffer.h"

namespace {

using vk_codec::EncodingName;
using vk_codec::TextCodec;

constexpr u32 kXmlLine = 76;
constexpr vk_simd::LineEnd kCr13Entity = {{'&', '#', '1', '3', ';', '\n'}, 6};

bool encodeCrEntity(const u8* data, u32 n, StringBuffer& out) {
  ContentEncoder encoder;
  encoder.setLineLength(kXmlLine);
  return encoder.encodeBase64CrEntity(data, n, out);
}

// The length is part of the name, "qp-72"; where there is none, 0 or one past 32 bits, the encoder has its own.
bool encodeQuotedPrintable(const char* name, const u8* data, u32 n, StringBuffer& out) {
  constexpr s32 kSaturated = 0x7FFFFFFF;
  s32 length = 0;
  TextScan::scanOne(name, "qp-%d", &length);
  ContentEncoder encoder;
  if (length != 0 && length != kSaturated) encoder.setLineLength(static_cast<u32>(length));
  return encoder.encodeQuotedPrintable(data, n, out);
}

// The text is complete or there is none: a number cut short would be another number.
bool encodeDecimal(const u8* data, u32 n, StringBuffer& out) {
  constexpr u32 kMost = 0x7FFFFFFF;
  mp_int number;
  if (n <= kMost && MpIntConvert::bytesToMpInt(number, data, static_cast<s32>(n)))
    MpIntConvert::mpIntToText(number, out, 10);
  return true;
}

bool encodeJson(const u8* data, u32 n, StringBuffer& out) {
  const u32 before = out.getSize();
  if (vk_encodeJson(data, n, out)) return true;
  out.shorten(out.getSize() - before);  // whole or not at all
  return false;
}

bool encodeUu(const u8* data, u32 n, StringBuffer& out) {
  DataBuffer bytes;
  if (n != 0) bytes.borrowData(const_cast<u8*>(data), n);  // only read
  return Uu().uu_encode(bytes, "", "", out);
}

// `name` is what the caller gave, from its first character that is no white space.
bool encodeAs(const EncodingName& row, const char* name, const u8* data, u32 n, StringBuffer& out) {
  LogNull log;
  switch (row.codec) {
    case TextCodec::base64:
      return ContentEncoder::encodeBase64(data, n, out);
    case TextCodec::base64Mime:
      return ContentEncoder().encodeBase64Mime(data, n, out);
    case TextCodec::base64CrEntity:
      return encodeCrEntity(data, n, out);
    case TextCodec::base64Cr13Entity:
      return vk_codec::encodeBase64Lines(data, n, kXmlLine, kCr13Entity, out);
    case TextCodec::base64Url:
      return vk_codec::encodeBase64UrlUnpadded(data, n, out);
    case TextCodec::modBase64:
      return ContentEncoder::encodeModBase64(data, n, out);
    case TextCodec::base32:
      return ContentEncoder::encodeBase32(data, n, out);
    case TextCodec::base45:
      return ContentEncoder::encodeBase45(data, n, out, log);
    case TextCodec::base58:
      return ContentEncoder::encodeBase58(data, n, out, log);
    case TextCodec::ascii85:
      return ContentEncoder::encodeAscii85(data, n, out, log);
    case TextCodec::hex:
      vk_appendHex(data, n, false, false, out);
      return true;
    case TextCodec::hexLower:
      vk_appendHex(data, n, true, false, out);
      return true;
    case TextCodec::fingerprint:
      vk_appendHex(data, n, true, true, out);
      return true;
    case TextCodec::eda:
      return ContentEncoder::encodeEda(data, n, out);
    case TextCodec::decList:
      return vk_encodeDecList(data, n, out);
    case TextCodec::decimal:
      return encodeDecimal(data, n, out);
    case TextCodec::quotedPrintable:
      return encodeQuotedPrintable(name, data, n, out);
    case TextCodec::wordB:
      return ContentEncoder::encodeWordB(data, n, _vkLit_utf8(), out);
    case TextCodec::wordQ:
      return ContentEncoder::encodeWordQ(data, n, _vkLit_utf8(), out);
    case TextCodec::uu:
      return encodeUu(data, n, out);
    case TextCodec::urlRfc3986:
      UrlCodec::encodeRfc3986(data, n, out);
      return true;
    case TextCodec::urlRfc1738:
      UrlCodec::encodeRfc1738(data, n, out);
      return true;
    case TextCodec::urlRfc2396:
      UrlCodec::encodeRfc2396(data, n, out);
      return true;
    case TextCodec::json:
      return encodeJson(data, n, out);
    case TextCodec::plain:
      return out.appendN(reinterpret_cast<const char*>(data), n);
  }
  return false;
}

}  // namespace

bool DataBuffer::encodeDB2(const char* encoding, const u8* data, u32 numBytes, StringBuffer& out) {
  const std::string_view name = vk_codec::trimmed(encoding);
  const EncodingName* const row = vk_codec::findEncodingName(name);
  if (!row) {
    out.weakClear();
    return false;
  }
  if (!data) numBytes = 0;
  return vk_withoutAlias(data, numBytes, out,
                         [&](const u8* bytes) { return encodeAs(*row, name.data(), bytes, numBytes, out); });
}

bool DataBuffer::encodeDB(const char* encoding, StringBuffer& out) const {
  return encodeDB2(encoding, data_, size_, out);
}

bool DataBuffer::getEncodedRange(const char* encoding, u32 start, u32 count, StringBuffer& out) const {
  if (!data_ || start >= size_) return false;
  return encodeDB2(encoding, data_ + start, std::min(count, size_ - start), out);
}

bool DataBuffer::parseDataEnc(u32& index, u32 numBytes, const char* encoding, StringBuffer& out) const {
  if (numBytes == 0) return true;
  if (!data_ || index >= size_ || numBytes > size_ - index) return false;
  DataBuffer field;  // its memory is asked for before anything is rendered or moved
  field.secure = secure;
  if (!field.append(data_ + index, numBytes)) return false;
  encodeDB2(encoding, field.data_, numBytes, out);
  index += numBytes;
  return true;
}

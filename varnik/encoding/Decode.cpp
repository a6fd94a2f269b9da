// Text back to bytes, by the name or number of the encoding or of a charset.
#include <string_view>

#include "varnik/buffer/DataBuffer.h"
#include "varnik/encoding/internal/DecodeText.h"
#include "varnik/encoding/internal/SelfAlias.h"
#include "varnik/services/charset/CharsetNames.h"
#include "varnik/services/charset/EncodingConvert.h"
#include "varnik/services/codecs/UrlCodec.h"
#include "varnik/services/codecs/internal/EncodingTable.h"
#include "varnik/services/codecs/internal/GroupDecoder.h"
#include "varnik/services/memory/Text.h"
#include "varnik/services/numbers/MpIntConvert.h"
#include "varnik/services/strings/StringBuffer.h"

namespace {

constexpr s32 kUtf8 = 65001;

using Decoder = DecodeResult(const char* text, u32 n, DataBuffer& out);

DecodeResult asResult(bool ok) {
  return {ok, kNoFault};
}

// For decoders to which white space at the ends is not all the same.
DecodeResult decodeTrimmed(Decoder& decode, std::string_view text, DataBuffer& out) {
  const std::string_view core = vk_codec::trimmed(text);
  DecodeResult result = decode(core.data(), static_cast<u32>(core.size()), out);
  if (result.badAt != kNoFault) result.badAt += static_cast<u32>(core.data() - text.data());
  return result;
}

// Into a buffer that holds bytes already, base64 goes by way of one of its own, and only the append decides.
DecodeResult decodeBase64(Decoder& decode, std::string_view text, DataBuffer& out) {
  const u32 n = static_cast<u32>(text.size());
  if (out.empty()) return decode(text.data(), n, out);
  DataBuffer bytes;
  const DecodeResult result = decode(text.data(), n, bytes);
  return {out.append(bytes), result.badAt};
}

// Where the `count`-th character that is no colon stands.
u32 skippingColons(std::string_view text, u32 count) {
  u32 at = 0;
  for (;; ++at) {
    if (text[at] == ':') continue;
    if (count-- == 0) return at;
  }
}

DecodeResult decodeFingerprint(std::string_view text, DataBuffer& out) {
  StringBuffer digits;
  digits.appendN(text.data(), static_cast<u32>(text.size()));
  digits.removeCharOccurances(':');
  DecodeResult result = vk_decodeHex(digits.getString(), digits.getSize(), out);
  if (result.badAt != kNoFault) result.badAt = skippingColons(text, result.badAt);
  return result;
}

// A text that is no number counts as far as its digits go; the fault is told and does not decide. Without memory
// nothing is appended: the bytes of 0 would pass for an answer.
DecodeResult decodeDecimal(std::string_view text, DataBuffer& out) {
  mp_int number;
  const bool clean = MpIntConvert::textToMpInt(number, text.data(), 10);
  const std::string_view core = vk_codec::trimmed(text);
  const std::size_t bad = clean ? core.npos : core.find_first_not_of("0123456789");
  if (!clean && !core.empty() && bad == core.npos) return DecodeResult::noMemory();
  const bool appended = MpIntConvert::mpIntToBytes(number, out);
  if (clean) return asResult(appended);
  const std::size_t at = static_cast<std::size_t>(core.data() - text.data()) + (core.empty() ? 0 : bad);
  return {appended, static_cast<u32>(at)};
}

// A broken escape stays in the text and does not decide.
DecodeResult decodeJson(std::string_view text, DataBuffer& out) {
  const DecodeResult result = vk_decodeJsonText(text.data(), static_cast<u32>(text.size()), out);
  return {result.ok || result.badAt != kNoFault, result.badAt};
}

DecodeResult convertCharset(s32 codePage, std::string_view text, DataBuffer& out) {
  LogNull log;
  const u8* const bytes = reinterpret_cast<const u8*>(text.data());
  return asResult(_vkEncodingConvert().EncConvert(kUtf8, codePage, bytes, static_cast<u32>(text.size()), out, log));
}

}  // namespace

DecodeResult vk_decodeText(s32 id, const char* text, u32 n, DataBuffer& out) {
  const std::string_view all(text, n);
  switch (id) {
    case 0:
    case 6:
    case kUtf8:
      return asResult(out.append(text, n));
    case 1:
    case 24:
      return decodeBase64(vk_decodeBase64, all, out);
    case 10:
    case 20:
      return decodeBase64(vk_decodeBase64Url, all, out);
    case 2:
      return vk_decodeQuotedPrintable(text, n, out);
    case 3:
    case 25:
      return vk_decodeHex(text, n, out);
    case 4:
      UrlCodec::urlDecode(text, out);
      return DecodeResult::good();
    case 7:
      return decodeTrimmed(vk_decodeBase58, all, out);
    case 17:
      return decodeTrimmed(vk_decodeAscii85, all, out);
    case 18:
      return decodeFingerprint(all, out);
    case 19:
      return decodeDecimal(all, out);
    case 21:
      return vk_decodeBase45(text, n, out);
    case 22:
      return decodeJson(all, out);
    case 23:
      return vk_decodeDecList(text, n, out);
    case 26:
      return decodeTrimmed(vk_decodeWords, all, out);
    case 30:
      return vk_decodeBase32(text, n, out);
    case 37:
      return decodeTrimmed(vk_decodeUu, all, out);
    default:
      return convertCharset(id, all, out);
  }
}

namespace {

// Out of line, so that the callers need no stack and no destructor on their usual way, which for short texts counts.

[[gnu::noinline]] bool appendByCharset(const char* text, const char* name, DataBuffer& out) {
  StringBuffer charset;
  if (!charset.append(name)) return false;
  charset.toLowerCase();
  charset.trim2();
  return out.appendEncodedById(text, CharsetNames::codePageForName(charset, nullptr));
}

// The decoder that finds the end of the text by itself; null where the length must be known first. Base64 finds it
// only where it need not decide about an append.
using TerminatedDecoder = DecodeResult (*)(const char* text, DataBuffer& out);
TerminatedDecoder terminatedDecoder(s32 id, bool intoEmpty) {
  switch (id) {
    case 1:
    case 24:
      return intoEmpty ? vk_codec::decodeTerminatedGroups<vk_codec::kBase64> : nullptr;
    case 10:
    case 20:
      return intoEmpty ? vk_codec::decodeTerminatedGroups<vk_codec::kBase64Url> : nullptr;
    case 3:
    case 25:
      return vk_codec::decodeTerminatedGroups<vk_codec::kHex>;
    case 30:
      return vk_codec::decodeTerminatedGroups<vk_codec::kBase32>;
    default:
      return nullptr;
  }
}

// For a text in `out` itself, which would move or be overwritten while it is read.
[[gnu::noinline]] bool decodeCopy(s32 id, const char* text, u32 n, DataBuffer& out) {
  StringBuffer copy;
  return copy.appendN(text, n) && vk_decodeText(id, copy.getString(), n, out).ok;
}

}  // namespace

bool DataBuffer::appendEncoded(const char* text, const char* name) {
  if (!text) return true;
  if (!name) return false;
  if (*text == 0) return true;
  const s32 id = vk_codec::decoderIdForName(name);
  return id != 0 ? appendEncodedById(text, id) : appendByCharset(text, name, *this);
}

bool DataBuffer::appendEncodedById(const char* text, s32 id) {
  if (!text || *text == 0) return true;
  if (vk_pointsInto(text, data_, capacity_)) return decodeCopy(id, text, vk_strlen(text), *this);
  if (const TerminatedDecoder decode = terminatedDecoder(id, empty())) return decode(text, *this).ok;
  return vk_decodeText(id, text, vk_strlen(text), *this).ok;
}

bool DataBuffer::appendDecList(const char* text) {
  return appendEncodedById(text, 23);
}

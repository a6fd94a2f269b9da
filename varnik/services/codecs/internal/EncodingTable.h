// The names of the encodings and what stands behind each: for the encoder, the name lookup and the tool's list.
#pragma once

#include <span>
#include <string_view>

#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

namespace vk_codec {

/// What a name stands for, in the order in which a list shows them.
enum class TextCodec : u8 {
  base64,
  base64Mime,
  base64CrEntity,
  base64Cr13Entity,
  base64Url,
  modBase64,
  base32,
  base45,
  base58,
  ascii85,
  hex,
  hexLower,
  fingerprint,
  eda,
  decList,
  decimal,
  quotedPrintable,
  wordB,
  wordQ,
  uu,
  urlRfc3986,
  urlRfc1738,
  urlRfc2396,
  json,
  plain,
};

/// How a name given is held against a name of the table.
enum class NameMatch : u8 { whole, prefix, prefixExactCase };  // the first two without regard to ASCII case

/// A name. Of two that match the one that stands first counts.
struct EncodingName {
  std::string_view name;
  NameMatch match;
  TextCodec codec;
};

/// What is true of a codec under all its names.
struct CodecFacts {
  TextCodec codec;
  s32 decoderId;  // see `DataBuffer::appendEncodedById`
  bool wraps;     // breaks its text into lines
  std::string_view about;
  std::string_view loses;  // what does not come back; empty when everything does
};

/// All names, in the order in which they are tried.
VARNIK_API std::span<const EncodingName> encodingNames();

/// Returns the first name of the table that matches the name given without white space around it, null when none does.
VARNIK_API const EncodingName* findEncodingName(std::string_view name);

VARNIK_API const CodecFacts& factsOf(TextCodec codec);

/// The id that decodes what is encoded under the name; 0 when it is no encoding's name.
s32 decoderIdForName(std::string_view name);

/// Cuts blanks, tabs, CR, LF, vertical tabs and form feeds at both ends.
VARNIK_API std::string_view trimmed(std::string_view text);

/// The same of a NUL-terminated text; null counts as empty.
VARNIK_API std::string_view trimmed(const char* text);

}  // namespace vk_codec

// base64 in lines with an end of the caller's choice.
#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Base64.h"

class StringBuffer;

namespace vk_codec {

/// Appends lines of `lineLength` characters, taken down to a multiple of 4, each with its end, the last one too;
/// nothing for no bytes. False, nothing appended, when memory or the size limit stands in the way. REQUIRES:
/// `lineLength` >= 4.
bool encodeBase64Lines(const u8* data, u32 n, u32 lineLength, const vk_simd::LineEnd& end, StringBuffer& out);

/// Appends URL-safe base64 without padding.
bool encodeBase64UrlUnpadded(const u8* data, u32 n, StringBuffer& out);

}  // namespace vk_codec

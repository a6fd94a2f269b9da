#pragma once

#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

class DataBuffer;
class StringBuffer;

/// Percent-encoding. An encoder appends every byte outside the unreserved characters of its RFC as `%` and two
/// upper-case hex digits; letters and digits are unreserved in each. False only when memory runs out.
class VARNIK_API UrlCodec {
 public:
  /// Unreserved besides: `- . _ ~` (RFC 3986 section 2.3).
  static bool encodeRfc3986(const u8* data, u32 n, StringBuffer& out);
  /// Unreserved besides: `$ - _ . + ! * ' ( ) ,` (RFC 1738 section 2.2).
  static bool encodeRfc1738(const u8* data, u32 n, StringBuffer& out);
  /// Unreserved besides: `- _ . ! ~ * ' ( )` (RFC 2396 section 2.3).
  static bool encodeRfc2396(const u8* data, u32 n, StringBuffer& out);

  /// Appends the bytes of a NUL-terminated text with its escapes undone. An escape that is cut off or holds no two hex
  /// digits stays as it stands; `+` stays `+`. False only when memory runs out.
  static bool urlDecode(const char* text, DataBuffer& out);
};

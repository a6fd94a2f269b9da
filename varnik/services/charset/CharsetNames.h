#pragma once

#include "varnik/services/logging/LogBase.h"
#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

class StringBuffer;

/// The names of charsets and their code-page numbers. Labels are those of IANA and of the WHATWG Encoding Standard, and
/// the spellings that people use for them (`utf8`, `UTF_8`, `latin1`, `cp1252`, `sjis`); case and surrounding white
/// space do not count. Where the two standards differ, ISO-8859-1 (28591), US-ASCII (20127) and ISO-8859-9 (28599) are
/// charsets of their own, as IANA has them, not other names of windows-1252 and windows-1254; "gb2312" is GBK (936).
///
/// "utf-16" and "utf-32" leave the byte order open: a conversion by that name goes by the byte-order mark, and takes
/// little-endian where there is none. Their code pages, 1200 and 12000, are the little-endian ones.
class VARNIK_API CharsetNames {
 public:
  /// Returns the code page of a charset name, 0 when the name is no charset. `log` may be null.
  static s32 codePageForName(StringBuffer& name, LogBase* log);
  /// Rewrites a label in place to the canonical name of its charset ("utf-8", "utf-16", "windows-1252"). False, and the
  /// name unchanged, when the label names no charset that is known.
  static bool canonicalizeCharset(StringBuffer& name);

  // For listings and for the nearest name to one that is unknown: the canonical names and the labels, by index.
  /// Returns how many canonical names (labels) there are.
  static u32 count();
  static u32 countLabels();
  /// Returns the canonical name (the label) at an index; null past the last.
  static const char* nameAt(u32 index);
  static const char* labelAt(u32 index);
};

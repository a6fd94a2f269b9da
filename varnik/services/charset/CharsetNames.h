#pragma once

#include "varnik/services/logging/LogBase.h"
#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

class StringBuffer;

/// The names of charsets and their code-page numbers. Labels are those of IANA and of the WHATWG Encoding Standard, and
/// the spellings that people use for them (`utf8`, `UTF_8`, `latin1`, `cp1252`, `sjis`); case and surrounding white
/// space do not count.
class VARNIK_API CharsetNames {
 public:
  /// Returns the code page of a charset name, 0 when the name is no charset. `log` may be null.
  static s32 codePageForName(StringBuffer& name, LogBase* log);
  /// Rewrites a label in place to the canonical name of its charset ("utf-8", "utf-16", "windows-1252"). False, and the
  /// name unchanged, when the label names no charset that is known.
  static bool canonicalizeCharset(StringBuffer& name);
};

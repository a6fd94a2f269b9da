#pragma once

#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

/// A charset chosen by name.
class VARNIK_API Charset {
 public:
  /// Selects a charset by its name (see `CharsetNames`). False for a name that is no charset: none is selected then.
  bool setByName(const char* name);
  /// Returns the code page of the selected charset; 0 when none is.
  s32 getCodePage() const { return codePage_; }

 private:
  s32 codePage_ = 0;
};

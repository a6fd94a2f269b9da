#pragma once

#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

/// Where the use of a damaged or destroyed object is reported. A report is counted and nothing else: what follows is
/// the caller's decision. Any thread may report.
class VARNIK_API Psdk {
 public:
  /// Reports an operation on an object whose validity byte is wrong, or a call that would corrupt one.
  static void badObjectFound(char* what);
  /// Reports a destructor that met a wrong validity byte.
  static void corruptObjectFound(char* what);
  /// Returns the number of reports of both kinds since the program started.
  static u32 numReports();
};

#pragma once

#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

/// A record of two byte areas that are zero after construction, and a count. Destruction does not wipe the areas.
class VARNIK_API FixedScratchBuffers {
 public:
  FixedScratchBuffers();
  FixedScratchBuffers(const FixedScratchBuffers&) = default;
  FixedScratchBuffers& operator=(const FixedScratchBuffers&) = default;
  /// Sets the count to 0.
  virtual ~FixedScratchBuffers();

  /// The areas.
  u8 firstArea[2048];
  u8 secondArea[1024];
  /// What the owner counts in them.
  u32 count;
};

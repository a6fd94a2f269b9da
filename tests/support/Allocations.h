// Allocation failures on demand: the test programs replace operator new and delete, in all their forms.
#pragma once

#include <initializer_list>

#include "varnik/services/memory/Types.h"

namespace faults {

/// Makes the `k`-th allocation (from 1) of this thread fail, or that one and all after it, while the object lives.
class FailAllocation {
 public:
  FailAllocation(u32 k, bool forGood);
  ~FailAllocation();
  FailAllocation(const FailAllocation&) = delete;
  FailAllocation& operator=(const FailAllocation&) = delete;

  /// True once an allocation was refused.
  bool struck() const;
};

/// Copies the first bytes of a block at the moment of its release, while the object lives.
class WatchRelease {
 public:
  /// REQUIRES: the block has `n` bytes, `n` at most 64.
  WatchRelease(const void* block, u32 n);
  ~WatchRelease();
  WatchRelease(const WatchRelease&) = delete;
  WatchRelease& operator=(const WatchRelease&) = delete;

  bool released() const;
  /// The bytes as they were when the block was released. REQUIRES: `released()`.
  const u8* bytes() const;
};

/// How many blocks this thread has allocated and not yet released (a block that another thread releases counts there).
s64 liveBlocks();
/// How many blocks this thread has asked for since it started.
u64 allocations();
/// The sum of their sizes.
u64 allocatedBytes();
/// The size of the block that this thread asked for last.
u64 lastAllocation();

/// Calls `operation(k, forGood)` for k = 1, 2, ..., each once and for good, until it answers that no refusal came. The
/// operation makes its objects, holds a `FailAllocation(k, forGood)` around the call under test only, checks what the
/// call left behind, and returns `struck()`. Returns how many refusals were made.
template <class Operation>
u32 failEachAllocation(Operation operation) {
  u32 refusals = 0;
  for (const bool forGood : {false, true})
    for (u32 k = 1;; ++k) {
      if (!operation(k, forGood)) break;
      ++refusals;
    }
  return refusals;
}

}  // namespace faults

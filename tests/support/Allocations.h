// Allocation failures on demand: the test programs replace operator new and delete, in all their forms.
#pragma once

#include <string>
#include <utility>

#include "varnik/services/memory/Types.h"

namespace faults {

/// What this thread has allocated: blocks not yet released (one that another thread releases counts there), blocks and
/// bytes since it started, and the size that it asked for last.
struct Tally {
  s64 live;
  u64 blocks, bytes, last;
};
inline thread_local Tally tally = {};

/// Refuses when `countdown` falls to 1; 0 is unarmed.
struct Refusal {
  u32 countdown;
  bool isForGood, hasStruck;
};
inline thread_local Refusal pendingRefusal = {};

/// Makes the `k`-th allocation (from 1) of this thread fail, or that one and all after it, while the object lives.
class FailAllocation {
 public:
  FailAllocation(u32 k, bool forGood) { pendingRefusal = {k, forGood, false}; }
  ~FailAllocation() { pendingRefusal.countdown = 0; }
  FailAllocation(FailAllocation&&) = delete;

  /// True once an allocation was refused.
  bool struck() const { return pendingRefusal.hasStruck; }
};

/// The block whose release is waited for, and what was seen of it then.
struct Watch {
  const void* block;
  u32 n;
  char seen[64];
};
inline thread_local Watch awaited = {};

/// The first `n` bytes of a block, as they were just before `let()` released it. REQUIRES: `n` is at most 64.
template <class Let>
std::string seenAtRelease(const void* block, u32 n, Let let) {
  awaited = {block, n, {}};
  let();
  return std::exchange(awaited.block, nullptr) ? "(not released)" : std::string(awaited.seen, n);
}

/// Calls `operation(k, forGood)` for k = 1, 2, ..., each once and for good, until it answers that no refusal came. The
/// operation makes its objects, holds a `FailAllocation(k, forGood)` around the call under test only, checks what the
/// call left behind, and returns `struck()`. Returns how many refusals were made.
template <class Operation>
u32 failEachAllocation(Operation operation) {
  u32 refusals = 0;
  for (const bool forGood : {false, true})
    for (u32 k = 1; operation(k, forGood); ++k) ++refusals;
  return refusals;
}

}  // namespace faults

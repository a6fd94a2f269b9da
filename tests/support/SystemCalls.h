// System calls that fail on demand. The test programs are linked so that the library's calls come here first (the
// linker's --wrap); the library itself knows nothing of it.
#pragma once

#include <gtest/gtest.h>

#include "varnik/services/memory/Types.h"

namespace faults {

/// The calls that are watched. `kAny` stands for all of them.
enum class Call {
  kOpen,  // open and openat
  kStat,  // stat, fstat and fstatat
  kRead,
  kWrite,
  kSeek,
  kSync,
  kChmod,
  kChown,
  kAccess,
  kReadLink,
  kRename,
  kUnlink,
  kClose,
  kRandom,
  kAny
};

/// What a call that is struck does.
struct Fault {
  enum Kind {
    kError,    // fails with `value` as errno, without taking effect (a close takes effect)
    kShort,    // a read or write moves `value` bytes less than asked for, but 1 at least
    kHalf,     // a read or write moves half of what was asked for, rounded up
    kNothing,  // a read or write answers 0
    kBreak,    // a read or write moves half, and those after it fail with `value` as errno, or answer 0 when it is 0
    kDie       // the process ends, before the call takes effect
  };
  Kind kind;
  int value;
};

/// Strikes a watched call when `countdown` falls to 1; 0 is unarmed.
struct Strike {
  Call watched;
  u32 countdown;
  bool isForGood, hasStruck;
  Fault fault;
};
inline thread_local Strike pendingStrike = {};

/// Strikes the `k`-th call (from 1) of this thread of one kind, or that one and all after it, while the object lives.
class FailCall {
 public:
  FailCall(Call call, u32 k, bool forGood, Fault fault) { pendingStrike = {call, k, forGood, false, fault}; }
  ~FailCall() { pendingStrike.countdown = 0; }
  FailCall(FailCall&&) = delete;

  /// True once a call was struck.
  bool struck() const { return pendingStrike.hasStruck; }
};

/// How many calls of a kind this thread has made.
u64 calls(Call call);
/// How many descriptors the process has open.
u32 openDescriptors();

/// Calls `operation()` with its k-th call of a kind struck, for k = 1, 2, ..., until there was no such call. Expects
/// that no descriptor stays open. Returns how many calls were struck.
template <class Operation>
u32 strikeEach(Call call, bool forGood, Fault fault, Operation operation) {
  const u32 before = openDescriptors();
  for (u32 k = 1;; ++k) {
    const FailCall armed(call, k, forGood, fault);
    operation();
    if (!armed.struck()) return k - 1;
    EXPECT_EQ(openDescriptors(), before) << "call " << k;
  }
}

}  // namespace faults

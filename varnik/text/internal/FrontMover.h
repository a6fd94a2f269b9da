#pragma once

#include <cstring>

#include "varnik/services/memory/Types.h"

/// Moves what stays of data[0, n) to the front, run by run, in one pass. The caller goes through the content once and
/// says of each stretch whether it stays; what it has not yet decided on is untouched.
class FrontMover {
 public:
  FrontMover(u8* data, u32 n) : data_(data), end_(n) {}

  /// How far the content is decided on.
  u32 decided() const { return read_; }
  /// Keeps the bytes up to `index`. REQUIRES: decided() <= index <= n.
  void keepTo(u32 index) {
    move(index - read_);
    write_ += index - read_;
    read_ = index;
  }
  /// Drops the bytes up to `index`.
  void dropTo(u32 index) { read_ = index; }
  /// Keeps what is left; returns how many bytes stay in all.
  u32 finish() {
    keepTo(end_);
    return write_;
  }

 private:
  static constexpr u32 kBlock = 32;

  // Once the gap is a block wide, whole blocks may be copied: what they write too much lies in the gap.
  void move(u32 count) {
    u8* const to = data_ + write_;
    const u8* const from = data_ + read_;
    if (to == from) return;
    if (read_ - write_ < kBlock || end_ - read_ - count < kBlock || count > kLongRun) {
      std::memmove(to, from, count);
      return;
    }
    for (u32 i = 0; i < count; i += kBlock) std::memcpy(to + i, from + i, kBlock);
  }

  static constexpr u32 kLongRun = 512;  // from here on a call is worth it

  u8* data_;
  u32 end_, read_ = 0, write_ = 0;
};

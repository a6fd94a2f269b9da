#include "varnik/services/charset/internal/DoubleByteTable.h"

namespace vk_charset {
namespace {

constexpr s32 kTaken = -1;
constexpr u32 kNumTables = 4;
DoubleByteTable tables[kNumTables];

// What ICU makes of one or two bytes, of which the first is from 0x80 on.
u16 unitOf(IcuConverter& icu, const u8* bytes, u32 n) {
  u16 units[8];
  icu.forgetBad();
  const auto step = icu.toUnits(bytes, n, units, 8, true);
  if (step.result != IcuConverter::Result::kDone || step.written != 1) return DoubleByteTable::kNoPair;
  return icu.bad() ? DoubleByteTable::kNoCharacter : units[0];
}

}  // namespace

bool DoubleByteTable::fillSingles(const char* converter) {
  IcuConverter icu(converter);
  for (u32 i = 0; i < 0x80; ++i) {
    const u8 byte = static_cast<u8>(0x80 | i);
    const u16 unit = unitOf(icu, &byte, 1);
    single_[i] = unit == kNoCharacter ? kNoPair : unit;
  }
  return icu.isOpen();
}

DoubleByteTable* DoubleByteTable::of(const CharsetInfo& charset) {
  for (DoubleByteTable& table : tables) {
    s32 id = table.id_.load(std::memory_order_acquire);
    if (id == charset.id) return &table;
    if (id != 0 || !table.id_.compare_exchange_strong(id, kTaken, std::memory_order_relaxed)) continue;
    const bool filled = table.fillSingles(charset.converter);
    table.id_.store(filled ? charset.id : 0, std::memory_order_release);
    return filled ? &table : nullptr;
  }
  return nullptr;
}

// The row is filled by whoever asks first; who asks meanwhile gets the one answer from ICU.
u16 DoubleByteTable::pairOfNewRow(u32 row, u8 second, IcuConverter& icu) {
  u8 bytes[2] = {static_cast<u8>(0x80 | row), second};
  u8 state = kUnknown;
  if (!rows_[row].compare_exchange_strong(state, kFilling, std::memory_order_relaxed)) return unitOf(icu, bytes, 2);
  for (u32 i = 0; i < 0x100; ++i) {
    bytes[1] = static_cast<u8>(i);
    units_[row][i] = unitOf(icu, bytes, 2);
  }
  const bool isGood = icu.isOpen();  // without memory nothing is known yet
  rows_[row].store(isGood ? kReady : kUnknown, std::memory_order_release);
  return isGood ? units_[row][second] : kNoPair;
}

}  // namespace vk_charset

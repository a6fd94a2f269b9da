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
  for (u32 i = 0; i < kRow; ++i) {
    const u8 byte = static_cast<u8>(i);
    const u16 unit = i < 0x80 ? u16{byte} : unitOf(icu, &byte, 1);
    units_[kNoRow + i] = kNoPair;
    units_[kSingles + i] = unit == kNoCharacter ? kNoPair : unit;
    rows_[i].store(units_[kSingles + i] == kNoPair ? kNoRow : static_cast<u16>(kSingles + i),
                   std::memory_order_relaxed);
  }
  leads_ = vk_simd::byteSetOf([this](u8 b) { return units_[kSingles + b] == kNoPair; });
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
u16 DoubleByteTable::pairOfNewRow(u8 first, u8 second, IcuConverter& icu) {
  u8 bytes[2] = {first, second};
  const u32 lead = first & (kNumLeads - 1);
  if (filling_[lead].exchange(true, std::memory_order_acquire)) return unitOf(icu, bytes, 2);
  u16* const row = units_ + lead * kRow;
  row[0] = kNoPair;
  for (u32 i = 1; i < kRow; ++i) {
    bytes[1] = static_cast<u8>(i);
    row[i] = unitOf(icu, bytes, 2);
  }
  const u16 unit = row[second];
  if (!icu.isOpen()) {  // without memory nothing is known yet
    filling_[lead].store(false, std::memory_order_release);
    return kNoPair;
  }
  rows_[first].store(static_cast<u16>(lead * kRow), std::memory_order_release);
  return unit;
}

}  // namespace vk_charset

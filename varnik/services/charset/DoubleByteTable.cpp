#include "varnik/services/charset/internal/DoubleByteTable.h"

namespace vk_charset {
namespace {

constexpr s32 kTaken = -1;
constexpr u32 kNumTables = 4;
DoubleByteTable tables[kNumTables];

void put(std::atomic<u16>& cell, u16 value) {
  cell.store(value, std::memory_order_relaxed);
}

// What ICU makes of one or two bytes, of which the first is from 0x80 on.
u16 askForUnit(IcuConverter& icu, const u8* bytes, u32 n) {
  u16 units[8];
  icu.forgetBad();
  const auto step = icu.toUnits(bytes, n, units, 8, true);
  if (step.result != IcuConverter::Result::kDone || step.written != 1) return DoubleByteTable::kNoPair;
  return icu.bad() ? DoubleByteTable::kNoCharacter : units[0];
}

// The code on the line that begins at `at`, which moves to the next. kSubstitute stands for units that have none.
u16 nextCode(const u8*& at, const u8* end) {
  const u8* const from = at;
  while (at != end && *at != '\n') ++at;
  const auto n = at - from;
  at += at != end;
  if (n == 1 && *from != kSubstitute) return static_cast<u16>(*from << 8);
  return n == 2 ? static_cast<u16>(from[0] << 8 | from[1]) : DoubleByteTable::kNoCode;
}

}  // namespace

bool DoubleByteTable::fillSingles(const char* converter) {
  IcuConverter icu(converter);
  bool isLead[kRow] = {};
  for (Cell& unit : units_) put(unit, kNoPair);
  for (Cell& code : codes_) put(code, kNoCode);
  for (u32 i = 0; i < kRow; ++i) {
    const u8 byte = static_cast<u8>(i);
    const u16 unit = i < 0x80 ? u16{byte} : askForUnit(icu, &byte, 1);
    isLead[i] = unit >= kNoCharacter;
    begins_[i] = static_cast<u16>(isLead[i] ? i % kNumLeads * kRow : kNumLeads * kRow + i);
    if (!isLead[i]) put(units_[begins_[i]], unit);
    if (i < 0x80) put(codes_[i], static_cast<u16>(i << 8));
  }
  leads_ = vk_simd::byteSetOf([&](u8 b) { return isLead[b]; });
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

bool DoubleByteTable::fillUnits(u8 lead, IcuConverter& icu) {
  const u32 row = lead % kNumLeads;
  Cell* const units = units_ + begins_[lead];
  if (unitsFilled_[row].load(std::memory_order_acquire)) return true;
  u8 bytes[2] = {lead, 0};
  for (u32 i = 1; i < kRow; ++i) {
    bytes[1] = static_cast<u8>(i);
    put(units[i], askForUnit(icu, bytes, 2));
  }
  if (!icu.isOpen()) return false;
  unitsFilled_[row].store(true, std::memory_order_release);
  return true;
}

// Asks for all units of the row at once, each on a line of its own. The ASCII half of the first one is known, and holds
// the end of a line.
bool DoubleByteTable::fillCodes(u16 unit, IcuConverter& icu) {
  const u32 row = unit / kRow, first = row == 0 ? 0x80 : row * kRow, end = (row + 1) * kRow;
  if (codesFilled_[row].load(std::memory_order_acquire)) return true;
  u16 units[2 * kRow] = {};
  u8 bytes[3 * kRow];
  u32 n = 0;
  for (u32 i = first; i < end; ++i) {
    units[n++] = static_cast<u16>(i);
    units[n++] = '\n';
  }
  const auto step = icu.fromUnits(units, n, bytes, sizeof bytes, true);
  if (step.result != IcuConverter::Result::kDone) return false;
  const u8* at = bytes;
  for (u32 i = first; i < end; ++i) put(codes_[i], nextCode(at, bytes + step.written));
  codesFilled_[row].store(true, std::memory_order_release);
  return true;
}

}  // namespace vk_charset

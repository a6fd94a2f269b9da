// Tidying of text held as UTF-16 code units in the processor's byte order, in place. The units may lie at any address.
#include <cstring>

#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/charset/Utf16Case.h"

namespace {

// The whole code units of a content.
class Units {
 public:
  Units(u8* data, u32 size) : data_(data), count_(data ? size / 2 : 0) {}

  u32 count() const { return count_; }
  u16 at(u32 i) const {
    u16 unit;
    std::memcpy(&unit, data_ + std::size_t{2} * i, sizeof unit);
    return unit;
  }
  void set(u32 i, u16 unit) { std::memcpy(data_ + std::size_t{2} * i, &unit, sizeof unit); }

 private:
  u8* data_;
  u32 count_;
};

}  // namespace

void DataBuffer::removeCharOccurancesW(u16 ch) {
  Units units(data_, size_);
  if (ch == 0 || units.count() == 0) return;
  u32 kept = 0;
  for (u32 i = 0; i < units.count(); ++i) {
    const u16 unit = units.at(i);
    units.set(kept, unit);
    kept += unit != ch;
  }
  size_ = kept * 2;
}

void DataBuffer::replaceCharW(u16 from, u16 to) {
  if (from == 0 || to == 0) return;
  Units units(data_, size_);
  for (u32 i = 0; i < units.count(); ++i) units.set(i, units.at(i) == from ? to : units.at(i));
}

bool DataBuffer::chopAtFirstCharW(u16 ch) {
  Units units(data_, size_);
  if (ch == 0 || units.count() == 0) return false;
  u32 i = 0;
  while (i < units.count() && units.at(i) != ch) ++i;
  const bool found = i < units.count();
  if (found) units.set(i, 0);
  size_ = (found ? i + 1 : i) * 2;
  return found;
}

bool DataBuffer::chopAtLastCharW(u16 ch) {
  Units units(data_, size_);
  if (ch == 0 || units.count() == 0) return false;
  u32 length = units.count();
  while (length != 0 && units.at(length - 1) != ch) --length;
  if (length != 0) units.set(length - 1, 0);
  size_ = (length != 0 ? length : units.count()) * 2;
  return length != 0;
}

void DataBuffer::toUppercaseW() {
  if (data_) Utf16Case::toUpper(data_, size_ / 2);
}

void DataBuffer::toLowercaseW() {
  if (data_) Utf16Case::toLower(data_, size_ / 2);
}

#include "varnik/services/codecs/ContentEncoder.h"

// A quoted-printable line must hold an escape and the soft break's `=`. What has its highest bit set was a negative
// number in the name of an encoding.
void ContentEncoder::setLineLength(u32 length) {
  constexpr u32 kLeast = 4, kNegative = 0x80000000, kDefault = 76;
  lineLength_ = length < kLeast || length >= kNegative ? kDefault : length;
}

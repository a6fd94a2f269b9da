#include "varnik/services/codecs/ContentEncoder.h"

// A quoted-printable line must hold an escape and the soft break's `=`. The greatest signed number and all above it are
// what a number in the name of an encoding becomes that is too large or negative.
void ContentEncoder::setLineLength(u32 length) {
  constexpr u32 kLeast = 4, kOverflow = 0x7FFFFFFF, kDefault = 76;
  lineLength_ = length < kLeast || length >= kOverflow ? kDefault : length;
}

#include <gtest/gtest.h>

#include "tests/simd/Forms.h"
#include "tests/support/Bytes.h"
#include "tests/support/GuardedBytes.h"
#include "varnik/simd/AsciiRun.h"

namespace {

TEST(AsciiRun, StopsAtTheFirstHighByteAtEveryPlace) {
  GuardedBytes guarded(300);
  for (const auto& form : VARNIK_FORMS(asciiRun))
    for (u32 n = 0; n <= 300; ++n)
      for (u32 at = 0; at <= n; ++at) {
        u8* const data = guarded.ending(std::string(n, '\x7F'));
        if (at < n) data[at] = 0x80;
        if (at + 1 < n) data[n - 1] = 0xFF;
        ASSERT_EQ(form.run(data, n), at) << form.name << ", " << n << " bytes";
      }
}

}  // namespace

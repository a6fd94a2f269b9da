// Padding of every scheme, on and off again, and authenticated encryption that one changed bit turns into nothing.
#include "fuzz/Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t n) {
  Choices in(data, n);
  const s32 scheme = in.byte() % 7 - 1, block = in.byte() % 20 - 1;
  const u32 bit = in.below(65536);
  const std::string_view given = in.rest();
  LogNull log;
  DataBuffer plain, padded, copied;
  plain.append(given.data(), countOf(given));

  padded.append(plain);
  const u32 effective = block == 8 ? 8 : 16, rest = plain.size() % effective;
  const u32 expected = scheme < 0 || scheme > 4 || (scheme > 1 && rest == 0) ? 0 : effective - rest;
  CHECK(padded.padForEncryption(scheme, block, log) == expected && padded.size() == plain.size() + expected);
  if (scheme == 0 || scheme == 1) {
    CHECK(padded.lastByte() == expected && padded.unpadAfterDecryption(scheme, 16, log));
    CHECK(padded.equals(plain));
  }
  copied.copyAndPadForEncryption(plain, scheme, block, log);
  const bool isCopied = scheme >= 0 && scheme <= 2 && block >= 1 && block <= 16;
  CHECK(viewOf(copied).substr(0, plain.size()) == (isCopied ? given : std::string_view()));
  if (isCopied) CHECK(copied.size() % static_cast<u32>(block) == 0 && copied.size() == copied.getBufSize());

  DataBuffer any(plain);  // whatever ends in a pad and whatever does not
  CHECK(any.unpadAfterDecryption(scheme, block, log) && viewOf(plain).substr(0, any.size()) == viewOf(any));
  const u32 last = plain.lastByte();
  bool isTls = last < plain.size();
  for (u32 i = 0; isTls && i < last; ++i) isTls = plain.byteAt(plain.size() - 2 - i) == last;
  CHECK(plain.verifyTlsPadding(log) == isTls);

  DataBuffer key, hidden, back;
  key.append("0123456789abcdef0123456789abcdef", bit % 32 + 1);
  CHECK(SymmetricCrypt::encryptBytes(256, nullptr, key, bytesOf(given), countOf(given), hidden, log));
  CHECK(SymmetricCrypt::decryptBytes(256, nullptr, key, hidden.getData2(), hidden.size(), back, log) &&
        back.equals(plain));
  u8& changed = hidden.getData2()[bit / 8 % hidden.size()];
  changed = static_cast<u8>(changed ^ 1u << bit % 8);
  CHECK(!SymmetricCrypt::decryptBytes(256, nullptr, key, hidden.getData2(), hidden.size(), back, log) && back.empty());
  return 0;
}

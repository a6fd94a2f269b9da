#pragma once

#include "varnik/services/logging/LogBase.h"
#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

class DataBuffer;

/// Authenticated encryption: AES-256-GCM (NIST SP 800-38D) with a fresh random 12-byte IV a message.
///
/// A ciphertext is the IV, the encrypted bytes and the 16-byte tag, 28 bytes longer than its plaintext. A key of 32
/// bytes is used as it is; a key of any other length, but not an empty one, goes through HKDF-SHA-256 (RFC 5869). At
/// most 2^32 messages should be encrypted under one key.
class VARNIK_API SymmetricCrypt {
 public:
  /// Replaces the content of `out` by the encryption of `n` bytes at `data` under `key`. `keyBits` is 256 and
  /// `algorithm` null, meaning the scheme above; other values are refused. False, and `out` empty, on failure.
  static bool encryptBytes(s32 keyBits, const char* algorithm, DataBuffer& key, const u8* data, u32 n, DataBuffer& out,
                           LogBase& log);
  /// Replaces the content of `out` by the plaintext of the ciphertext of `n` bytes at `data`. A ciphertext that was
  /// changed, cut or made under another key gives false and an empty `out`: not one byte of plaintext comes out.
  static bool decryptBytes(s32 keyBits, const char* algorithm, DataBuffer& key, const u8* data, u32 n, DataBuffer& out,
                           LogBase& log);
};

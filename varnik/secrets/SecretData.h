#pragma once

#include "varnik/buffer/DataBuffer.h"
#include "varnik/services/crypto/SecretHolderBase.h"

class LogBase;

/// Keeps a secret in memory only encrypted, and decrypts it on demand into a buffer of the caller's.
///
/// The key is the caller's, not the holder's: a buffer that every operation is given, filled with 32 random bytes by
/// the first operation that stores a secret under an empty one. Every buffer that carries a key or a plaintext through
/// here gets its `secure` flag set. One thread at a time may use a holder and its key.
class VARNIK_API SecretData : public SecretHolderBase {
 public:
  SecretData() = default;
  /// An empty holder: a secret is never copied without its keys; see `copySecretFrom`.
  SecretData(const SecretData& other);
  /// Does nothing: the secret held stays.
  SecretData& operator=(const SecretData& other);
  /// Wipes the ciphertext.
  ~SecretData() override;

  /// Replaces the secret by the encryption of `len` bytes at `data`; null or 0 empties the holder. False when no key is
  /// to be had (an error is logged, the secret held stays) or the encryption fails (the holder is empty).
  bool setSecret(DataBuffer& key, const u8* data, u32 len, LogBase& log);
  /// The same from a buffer, whose `secure` flag is set.
  bool setSecretFromBuffer(DataBuffer& key, DataBuffer& plain);
  /// Replaces `out` by the secret; an empty holder gives an empty `out` and true. False, `out` empty, for an empty key
  /// and when the decryption fails.
  bool getSecret(DataBuffer& key, DataBuffer& out, LogBase& log);
  /// Makes this holder hold the secret of `source`, encrypted under `key`; empty where that fails.
  void copySecretFrom(DataBuffer& key, DataBuffer& sourceKey, SecretData& source);
  bool isEmpty() const { return encrypted_.empty(); }
  /// Returns the length of the ciphertext in bytes.
  u32 getEncryptedSize() const { return encrypted_.size(); }
  /// Wipes the ciphertext and empties the holder; the storage is kept.
  void secureClear();

 private:
  DataBuffer encrypted_;  // empty when no secret is held
};

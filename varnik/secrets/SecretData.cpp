#include "varnik/secrets/SecretData.h"

#include "varnik/services/crypto/RandomSource.h"
#include "varnik/services/crypto/SymmetricCrypt.h"
#include "varnik/services/logging/LogBase.h"

namespace {

constexpr s32 kKeyBits = 256;
constexpr u32 kKeySize = kKeyBits / 8;

}  // namespace

SecretData::SecretData(const SecretData& other) : SecretHolderBase(other) {}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): nothing is assigned
SecretData& SecretData::operator=(const SecretData&) {
  return *this;
}

SecretData::~SecretData() {
  encrypted_.secureClear();
}

void SecretData::secureClear() {
  encrypted_.secureClear();
}

bool SecretData::setSecret(DataBuffer& key, const u8* data, u32 len, LogBase& log) {
  key.secure = 1;
  if (key.empty() && !RandomSource::generateBytes(kKeySize, key)) {
    log.LogError_lcr("there are no random bytes for a key");
    return false;
  }
  if (!data || len == 0) {
    secureClear();
    return true;
  }
  // This overwrites or wipes what was held, whatever comes of it.
  return SymmetricCrypt::encryptBytes(kKeyBits, nullptr, key, data, len, encrypted_, log);
}

bool SecretData::setSecretFromBuffer(DataBuffer& key, DataBuffer& plain) {
  plain.secure = 1;
  LogNull nowhere;
  return setSecret(key, plain.getData2(), plain.size(), nowhere);
}

bool SecretData::getSecret(DataBuffer& key, DataBuffer& out, LogBase& log) {
  key.checkValidityDb();  // reported, no more: the operation goes on
  out.checkValidityDb();
  key.secure = 1;
  out.secure = 1;
  out.clear();
  if (encrypted_.empty()) return true;
  if (key.empty()) return false;
  return SymmetricCrypt::decryptBytes(kKeyBits, nullptr, key, encrypted_.getData2(), encrypted_.size(), out, log);
}

void SecretData::copySecretFrom(DataBuffer& key, DataBuffer& sourceKey, SecretData& source) {
  if (source.isEmpty()) {
    encrypted_.secureClear();
    return;
  }
  DataBuffer plain;
  plain.secure = 1;
  LogNull nowhere;
  source.getSecret(sourceKey, plain, nowhere);
  setSecretFromBuffer(key, plain);
}

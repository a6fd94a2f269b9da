#include "varnik/secrets/SecretString.h"

#include "varnik/services/memory/Text.h"
#include "varnik/services/strings/XString.h"

namespace {

// Appends the secret to `out`, which wipes what it lets go. A text that found no memory is no success.
bool appendSecret(SecretData& secret, DataBuffer& key, StringBuffer& out, LogBase& log) {
  DataBuffer plain;
  plain.secure = 1;
  return secret.getSecret(key, plain, log) && out.append(plain);
}

}  // namespace

bool SecretString::setSecString(DataBuffer& key, const char* text, LogBase& log) {
  key.secure = 1;
  return secret_.setSecret(key, reinterpret_cast<const u8*>(text), vk_strlen(text), log);
}

bool SecretString::getSecString(DataBuffer& key, StringBuffer& out, LogBase& log) {
  key.secure = 1;
  out.setSecure(true);
  out.clear();
  return appendSecret(secret_, key, out, log);
}

bool SecretString::getSecStringX(DataBuffer& key, XString& out, LogBase& log) {
  out.setSecureX(true);
  key.secure = 1;
  out.secureClear();
  return secret_.isEmpty() || appendSecret(secret_, key, out.getUtf8Sb_rw(), log);
}

bool SecretString::getSecData(DataBuffer& key, DataBuffer& out, LogBase& log) {
  out.secure = 1;
  key.secure = 1;
  return secret_.getSecret(key, out, log);
}

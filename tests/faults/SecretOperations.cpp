#include "tests/faults/Operations.h"

namespace faults {
namespace {

bool encrypt(Scene& s, u32 n, DataBuffer& out) {
  return SymmetricCrypt::encryptBytes(256, nullptr, s.key, s.source.getData2(), n, out, s.log);
}

/// Stores a secret in a holder and hands it out again by `get` into `out`.
template <class Get, class Out>
Operation holding(const char* what, Get get, Out Scene::*out) {
  return emptying(what, [=](Scene& s) {
    SecretString secret;
    return secret.setSecString(s.key, "a secret of some length", s.log) && (secret.*get)(s.key, s.*out, s.log);
  });
}

/// Pads `source` and puts the result behind what `buffer` holds. Answers by the length, whatever the memory.
Operation padding(s32 scheme) {
  return alwaysTrue(extending("padForEncryption", [scheme](Scene& s) {
    const u32 added = s.source.padForEncryption(scheme, 16, s.log);
    s.buffer.append(s.source);
    return added == 8;
  }));
}

Operation copyAndPad(s32 scheme) {
  return emptying("copyAndPadForEncryption",
                  [scheme](Scene& s) { s.buffer.copyAndPadForEncryption(s.source, scheme, 16, s.log); });
}

bool copySecret(Scene& s) {
  SecretData first, second;
  DataBuffer otherKey;
  if (!first.setSecretFromBuffer(otherKey, s.source)) return false;
  second.copySecretFrom(s.key, otherKey, first);
  return !second.isEmpty() && second.getSecret(s.key, s.buffer, s.log);
}

}  // namespace

std::vector<Operation> secretOperations() {
  return {
      random(emptying("encryptBytes", [](Scene& s) { return encrypt(s, 999, s.buffer); })),
      random(emptying("encryptBytes under a derived key",
                      [](Scene& s) { return s.key.shorten(5), encrypt(s, 9, s.buffer); })),
      emptying("encrypt and decrypt",
               [](Scene& s) {
                 DataBuffer hidden;
                 return encrypt(s, 999, hidden) && SymmetricCrypt::decryptBytes(256, nullptr, s.key, hidden.getData2(),
                                                                                hidden.size(), s.buffer, s.log);
               }),
      random(op("generateBytes", [](Scene& s) { return RandomSource::generateBytes(999, s.buffer); })),
      holding("getSecString", &SecretString::getSecString, &Scene::text),
      holding("getSecStringX", &SecretString::getSecStringX, &Scene::wide),
      holding("getSecData", &SecretString::getSecData, &Scene::buffer),
      emptying("copySecretFrom", copySecret),
      copyAndPad(0),
      random(copyAndPad(1)),
      padding(0),
      random(padding(1)),
      random(padding(2)),
      op("RefCountedDataBuffer",
         [](Scene& s) {
           auto* const shared = new (std::nothrow) RefCountedDataBuffer;
           if (!shared) return false;
           const bool done = shared->buffer.append(s.source) && s.buffer.append(shared->buffer);
           shared->decRefCount();
           return done;
         }),
  };
}

}  // namespace faults

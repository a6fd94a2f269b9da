#include "tests/faults/Operations.h"

namespace faults {
namespace {

/// Stores a secret in a holder and hands it out again by `get`.
template <class Get>
auto holding(Get get) {
  return [get](Scene& s) {
    LogNull log;
    SecretString secret;
    return secret.setSecString(s.key, "a secret of some length", log) && get(secret, s, log);
  };
}

/// Pads `source` and puts the result behind what `buffer` holds.
auto padding(s32 scheme) {
  return [scheme](Scene& s) {
    LogNull log;
    const u32 added = s.source.padForEncryption(scheme, 16, log);
    s.buffer.append(s.source);
    return added == (scheme == 5 ? 0u : 8u);
  };
}

}  // namespace

std::vector<Operation> secretOperations() {
  return {
      random(emptying("encryptBytes",
                      [](Scene& s) {
                        LogNull log;
                        return SymmetricCrypt::encryptBytes(256, nullptr, s.key, s.source.getData2(), 999, s.buffer,
                                                            log);
                      })),
      random(emptying("encryptBytes under a derived key",
                      [](Scene& s) {
                        LogNull log;
                        s.key.shorten(5);
                        return SymmetricCrypt::encryptBytes(256, nullptr, s.key, s.source.getData2(), 9, s.buffer, log);
                      })),
      emptying("encrypt and decrypt",
               [](Scene& s) {
                 LogNull log;
                 DataBuffer hidden;
                 return SymmetricCrypt::encryptBytes(256, nullptr, s.key, s.source.getData2(), 999, hidden, log) &&
                        SymmetricCrypt::decryptBytes(256, nullptr, s.key, hidden.getData2(), hidden.size(), s.buffer,
                                                     log);
               }),
      random(op("generateBytes", [](Scene& s) { return RandomSource::generateBytes(999, s.buffer); })),
      emptying("getSecString", holding([](SecretString& held, Scene& s, LogBase& log) {
                 return held.getSecString(s.key, s.text, log);
               })),
      emptying("getSecStringX", holding([](SecretString& held, Scene& s, LogBase& log) {
                 return held.getSecStringX(s.key, s.wide, log);
               })),
      emptying("getSecData", holding([](SecretString& held, Scene& s, LogBase& log) {
                 return held.getSecData(s.key, s.buffer, log);
               })),
      emptying("copySecretFrom",
               [](Scene& s) {
                 LogNull log;
                 SecretData first, second;
                 DataBuffer otherKey;
                 if (!first.setSecretFromBuffer(otherKey, s.source)) return false;
                 second.copySecretFrom(s.key, otherKey, first);
                 return !second.isEmpty() && second.getSecret(s.key, s.buffer, log);
               }),
      emptying("copyAndPadForEncryption",
               [](Scene& s) {
                 LogNull log;
                 s.buffer.copyAndPadForEncryption(s.source, 0, 16, log);
               }),
      random(emptying("copyAndPadForEncryption, random",
                      [](Scene& s) {
                        LogNull log;
                        s.buffer.copyAndPadForEncryption(s.source, 1, 16, log);
                      })),
      alwaysTrue(extending("padForEncryption 0", padding(0))),
      alwaysTrue(random(extending("padForEncryption 1", padding(1)))),
      alwaysTrue(random(extending("padForEncryption 2", padding(2)))),
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

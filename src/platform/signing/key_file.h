// The private key of a signer: made once, kept in a file that nobody else may read (PKCS#8 in PEM), used to sign.
#pragma once

#include "signing/signature.h"

#include <QString>
#include <memory>

struct evp_pkey_st;

namespace signing {

class PrivateKey {
  public:
    // Makes a new one in a file that must not be there yet. Null where that fails; `error` says why.
    static PrivateKey Make(const QString& nativePath, QString& error);
    // Null where the file is missing, readable by others, or holds no such key.
    static PrivateKey Read(const QString& nativePath, QString& error);

    explicit operator bool() const { return key_ != nullptr; }
    QByteArray PublicKey() const;
    // Null where the message is.
    Signature Sign(const QByteArray& message) const;

  private:
    std::shared_ptr<evp_pkey_st> key_;
};

} // namespace signing

#include "signing/signature.h"

#include <QCryptographicHash>
#include <QFile>
#include <QStringList>
#include <algorithm>
#include <memory>
#include <openssl/evp.h>

namespace signing {

namespace {

constexpr char heading[] = "Quorvane database signature 1";
// In front of what is signed, so that a signature of anything else by the same key is none of a database.
constexpr char messageStart[] = "Quorvane database 1\n";
constexpr qsizetype mostSignatures = 8;

QByteArray Decoded(const QByteArray& text, qsizetype size) {
    const auto decoded = QByteArray::fromBase64Encoding(text, QByteArray::AbortOnBase64DecodingErrors);
    // One spelling for each value: what decodes alike but reads otherwise is refused.
    return decoded && decoded.decoded.size() == size && decoded.decoded.toBase64() == text ? decoded.decoded
                                                                                           : QByteArray();
}

struct FreeKey {
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};
struct FreeContext {
    void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};

const unsigned char* Bytes(const QByteArray& bytes) {
    return reinterpret_cast<const unsigned char*>(bytes.constData());
}

} // namespace

QByteArray MessageOf(const QString& nativePath) {
    QFile file(nativePath);
    QCryptographicHash checksum(QCryptographicHash::Sha512);
    if (!file.open(QIODevice::ReadOnly) || !checksum.addData(&file)) {
        return {};
    }
    return messageStart + checksum.result();
}

bool IsSigned(const QByteArray& message, const Signature& signature) {
    if (message.isEmpty() || signature.PublicKey.size() != PublicKeySize || signature.Bytes.size() != SignatureSize) {
        return false;
    }
    const std::unique_ptr<EVP_PKEY, FreeKey> key(
        EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, Bytes(signature.PublicKey), PublicKeySize));
    const std::unique_ptr<EVP_MD_CTX, FreeContext> context(EVP_MD_CTX_new());
    return key && context && EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, key.get()) == 1 &&
           EVP_DigestVerify(context.get(), Bytes(signature.Bytes), SignatureSize, Bytes(message),
                            size_t(message.size())) == 1;
}

QByteArray SignatureText(const QList<Signature>& signatures) {
    QByteArray text = QByteArray(heading) + '\n';
    for (const Signature& signature : signatures) {
        text += signature.PublicKey.toBase64() + ' ' + signature.Bytes.toBase64() + '\n';
    }
    return text;
}

QList<Signature> ReadSignatureText(const QByteArray& text) {
    QByteArrayList lines = text.split('\n');
    const qsizetype count = lines.size() - 2;
    if (count < 1 || count > mostSignatures || lines.takeFirst() != heading || !lines.takeLast().isEmpty()) {
        return {};
    }
    QList<Signature> signatures;
    for (const QByteArray& line : std::as_const(lines)) {
        const QByteArrayList fields = line.split(' ');
        const Signature read{Decoded(fields.value(0), PublicKeySize), Decoded(fields.value(1), SignatureSize)};
        const bool doubled = std::any_of(signatures.cbegin(), signatures.cend(),
                                         [&read](const Signature& other) { return other.PublicKey == read.PublicKey; });
        if (fields.size() != 2 || read.PublicKey.isEmpty() || read.Bytes.isEmpty() || doubled) {
            return {};
        }
        signatures.append(read);
    }
    return signatures;
}

bool IsSignedFile(const QString& nativePath, const QByteArray& signatureText, const QByteArrayList& trustedKeys) {
    QList<Signature> signatures = ReadSignatureText(signatureText);
    signatures.removeIf(
        [&trustedKeys](const Signature& signature) { return !trustedKeys.contains(signature.PublicKey); });
    const QByteArray message = signatures.isEmpty() ? QByteArray() : MessageOf(nativePath);
    return !signatures.isEmpty() &&
           std::all_of(signatures.cbegin(), signatures.cend(),
                       [&message](const Signature& signature) { return IsSigned(message, signature); });
}

QByteArrayList ReadPublicKeys(const QString& text) {
    QByteArrayList keys;
    for (const QString& part : text.split(u' ', Qt::SkipEmptyParts)) {
        const QByteArray key = Decoded(part.toLatin1(), PublicKeySize);
        if (key.isEmpty()) {
            return {};
        }
        keys.append(key);
    }
    return keys;
}

} // namespace signing

// Signatures of files by Ed25519: who holds the private key made this file. The cryptography is the system's own
// (libcrypto), which nothing of this touches before a signature is asked about.
//
// A signature file is text: a heading, then a line for each key with the public key and the signature in base64.
#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QList>
#include <QString>

namespace signing {

// The file beside the database in an archive. A text, so that programs that know nothing of it take it for one.
inline constexpr char16_t SignatureName[] = u"hwids.sig.txt";

inline constexpr qsizetype PublicKeySize = 32; // bytes
inline constexpr qsizetype SignatureSize = 64;

struct Signature {
    QByteArray PublicKey;
    QByteArray Bytes;
};

// What is signed of a file: its kind and its checksum. Empty where it cannot be read.
QByteArray MessageOf(const QString& nativePath);

// Whether the holder of the private key signed exactly this message.
bool IsSigned(const QByteArray& message, const Signature& signature);

QByteArray SignatureText(const QList<Signature>& signatures);
// Empty where the text is anything but that, or names a key twice.
QList<Signature> ReadSignatureText(const QByteArray& text);

// Whether one of the trusted keys signed the file, and none of them signed something else by that text.
bool IsSignedFile(const QString& nativePath, const QByteArray& signatureText, const QByteArrayList& trustedKeys);

// The keys that a build trusts, from their base64 between blanks. Empty where one is none.
QByteArrayList ReadPublicKeys(const QString& text);

} // namespace signing

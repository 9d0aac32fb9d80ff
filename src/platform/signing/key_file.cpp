#include "signing/key_file.h"

#include <QFile>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <sys/stat.h>
#include <unistd.h>

namespace signing {

namespace {

constexpr qint64 largestKeyFile = 4096; // bytes
constexpr mode_t ownerAlone = 0600;

struct FreeBio {
    void operator()(BIO* bio) const { BIO_free(bio); }
};
using Bio = std::unique_ptr<BIO, FreeBio>;

std::shared_ptr<EVP_PKEY> Owned(EVP_PKEY* key) {
    return {key, [](EVP_PKEY* owned) { EVP_PKEY_free(owned); }};
}

// The bytes of a key file, or why there are none. Neither waits for a pipe nor follows a link.
QByteArray ReadKeyFile(const QString& path, QString& error) {
    const int descriptor =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    struct stat status {};
    if (descriptor < 0 || ::fstat(descriptor, &status) != 0) {
        error = QString::fromLocal8Bit(std::strerror(errno));
        return {};
    }
    QFile file;
    QByteArray bytes;
    if (!S_ISREG(status.st_mode)) {
        error = QStringLiteral("not a file");
    } else if ((status.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
        error = QStringLiteral("others may read or write this key; chmod 600 it, or make a new one");
    } else if (status.st_size > largestKeyFile || !file.open(descriptor, QIODevice::ReadOnly)) {
        error = QStringLiteral("not a key of keygen");
    } else {
        bytes = file.read(largestKeyFile);
    }
    ::close(descriptor);
    return bytes;
}

// No passphrase is asked for: a key that has one is of another kind.
int NoPassphrase(char* /*unused*/, int /*unused*/, int /*unused*/, void* /*unused*/) { return -1; }

bool WriteKeyFile(const QString& path, EVP_PKEY* key, QString& error) {
    const Bio bio(BIO_new(BIO_s_mem()));
    char* text = nullptr;
    if (!bio || PEM_write_bio_PKCS8PrivateKey(bio.get(), key, nullptr, nullptr, 0, nullptr, nullptr) != 1) {
        error = QStringLiteral("the key could not be made");
        return false;
    }
    const long size = BIO_get_mem_data(bio.get(), &text);
    const QByteArray name = QFile::encodeName(path);
    const int descriptor = ::open(name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, ownerAlone);
    // Whole and on the disk: the public key that goes into builds must not outlive the private one.
    errno = 0;
    const bool written = descriptor >= 0 && ::write(descriptor, text, size_t(size)) == size && ::fsync(descriptor) == 0;
    if (!written) {
        error = QString::fromLocal8Bit(std::strerror(errno));
    }
    if (descriptor >= 0) {
        ::close(descriptor);
        if (!written) {
            ::unlink(name.constData());
        }
    }
    return written;
}

} // namespace

PrivateKey PrivateKey::Make(const QString& nativePath, QString& error) {
    PrivateKey made;
    made.key_ = Owned(EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519"));
    if (!made.key_) {
        error = QStringLiteral("the key could not be made");
        return {};
    }
    return WriteKeyFile(nativePath, made.key_.get(), error) ? made : PrivateKey();
}

PrivateKey PrivateKey::Read(const QString& nativePath, QString& error) {
    const QByteArray text = ReadKeyFile(nativePath, error);
    if (!error.isEmpty()) {
        return {};
    }
    PrivateKey read;
    const Bio bio(BIO_new_mem_buf(text.constData(), int(text.size())));
    read.key_ = Owned(bio ? PEM_read_bio_PrivateKey(bio.get(), nullptr, NoPassphrase, nullptr) : nullptr);
    if (!read.key_ || EVP_PKEY_get_base_id(read.key_.get()) != EVP_PKEY_ED25519) {
        error = QStringLiteral("not a key of keygen");
        return {};
    }
    return read;
}

QByteArray PrivateKey::PublicKey() const {
    QByteArray bytes(PublicKeySize, '\0');
    size_t size = size_t(bytes.size());
    const int got = EVP_PKEY_get_raw_public_key(key_.get(), reinterpret_cast<unsigned char*>(bytes.data()), &size);
    return got == 1 && size == size_t(PublicKeySize) ? bytes : QByteArray();
}

Signature PrivateKey::Sign(const QByteArray& message) const {
    QByteArray bytes(SignatureSize, '\0');
    size_t size = size_t(bytes.size());
    EVP_MD_CTX* context = EVP_MD_CTX_new();
    const bool made =
        !message.isEmpty() && context != nullptr &&
        EVP_DigestSignInit(context, nullptr, nullptr, nullptr, key_.get()) == 1 &&
        EVP_DigestSign(context, reinterpret_cast<unsigned char*>(bytes.data()), &size,
                       reinterpret_cast<const unsigned char*>(message.constData()), size_t(message.size())) == 1;
    EVP_MD_CTX_free(context);
    return made ? Signature{PublicKey(), bytes} : Signature();
}

} // namespace signing

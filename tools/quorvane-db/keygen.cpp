// quorvane-db keygen: makes the key that databases are signed with. What goes into builds is printed; the file stays
// with its maker.
#include "command.h"
#include "options.h"
#include "signing/key_file.h"

namespace tool {

int Keygen(const QStringList& arguments) {
    Options options({QStringLiteral("output")}, {});
    const QString wrong = options.Read(arguments);
    const QString output = options.Value(QStringLiteral("output"));
    const bool makes = !output.isEmpty() && options.Arguments().isEmpty();
    const bool shows = !options.Has(QStringLiteral("output")) && options.Arguments().size() == 1;
    if (!wrong.isEmpty() || (!makes && !shows)) {
        return RefuseUsage(wrong.isEmpty() ? QStringLiteral("keygen needs --output FILE, or a key's FILE") : wrong);
    }
    const QString path = makes ? output : options.Arguments().first();
    QString error;
    const signing::PrivateKey key =
        makes ? signing::PrivateKey::Make(path, error) : signing::PrivateKey::Read(path, error);
    if (!key) {
        return Fail(QStringLiteral("%1: %2").arg(path, error));
    }
    Print(QStringLiteral("QUORVANE_UPDATE_KEY=") + QString::fromLatin1(key.PublicKey().toBase64()));
    return Finish();
}

} // namespace tool

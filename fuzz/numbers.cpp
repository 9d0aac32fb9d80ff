// Version texts, numbers and their formats.
#include "base/numbers.h"
#include "base/text.h"
#include "fuzz_support.h"
#include "updating/download_formats.h"
#include "updating/version_compare.h"

#include <array>
#include <cmath>
#include <limits>

namespace {

// The order behind the comparison: `remote` is newer than `local`.
bool IsNewer(const QString& remote, const QString& local) { return !updating::IsVersionCurrent(remote, local); }

bool HasThreeFields(const QString& version) { return base::Split(version, QStringLiteral(".")).size() >= 3; }

void CheckVersions(const std::array<QString, 3>& versions) {
    const auto& [first, second, third] = versions;
    fuzz::Require(!IsNewer(first, first), "no version is newer than itself");
    fuzz::Require(!(IsNewer(first, second) && IsNewer(second, first)), "two versions are not newer than each other");
    if (!HasThreeFields(first) || !HasThreeFields(second) || !HasThreeFields(third))
        return; // a field that is missing counts as current, which is no order
    fuzz::Require(!IsNewer(first, second) || !IsNewer(second, third) || IsNewer(first, third),
                  "newer than a newer one is newer");
}

void CheckText(const QString& text) {
    const std::optional<double> number = base::TextToNumber(text);
    const std::optional<qint32> whole = base::TextToInt(text);
    fuzz::Require(!number || std::isfinite(*number), "a text is a finite number or none");
    fuzz::Require(!whole || number, "a whole number is a number");
    if (number && !whole) {
        fuzz::Require(std::fabs(*number) >= double(std::numeric_limits<qint32>::max()),
                      "only large numbers do not fit");
    }
    if (!number)
        fuzz::Require(base::FormatNumber(text, QStringLiteral("00000")) == text, "words are left as they are");
    QString joined;
    for (const QString& piece : base::Split(text, QStringLiteral(".")))
        joined += (joined.isNull() ? QStringLiteral("") : QStringLiteral(".")) + piece;
    fuzz::Require(text == joined || text.isEmpty(), "pieces make up the whole");
    fuzz::Require(base::FromAnsi(base::ToAnsi(base::FromAnsi(text.toUtf8()))) == base::FromAnsi(text.toUtf8()),
                  "the code page goes both ways");
}

void CheckNumber(double value) {
    for (const char* pattern : {"0", "00", "000", "00000", "#0", "0.00", "###,###,###,###"}) {
        const QString text = base::FormatNumber(value, QLatin1String(pattern));
        if (!std::isfinite(value) || std::fabs(value) >= 1e15)
            continue;
        const bool grouped = pattern[0] == '#' && pattern[1] == '#';
        const std::optional<double> back = base::TextToNumber(QString(text).remove(u','));
        const double step = QLatin1String(pattern) == QLatin1String("0.00") ? 0.01 : 1;
        fuzz::Require(back ? std::fabs(*back - value) <= step * 0.5000001 + std::fabs(value) * 1e-12
                           : grouped && text.isEmpty() && std::fabs(value) <= 0.5,
                      "a formatted number is the number, rounded");
    }
    const qint32 rounded = base::RoundToInt(value);
    fuzz::Require(!(std::fabs(value) < 2e9) || std::fabs(rounded - value) <= 0.5, "rounding goes to the nearest");
    fuzz::Require(!(base::RoundToInt64(value) < 0) || value < 0, "rounding keeps the sign");
    fuzz::Require(!updating::FormatRate(value).isEmpty() && !updating::FormatTimeLeft(float(value)).isEmpty(),
                  "each rate and time has a text");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Reader reader(data, size);
    const std::array<QString, 3> texts{reader.Text(), reader.Text(), reader.Text()};
    CheckVersions(texts);
    // Versions as they are meant to be, so that order is met often enough.
    const auto version = [&reader] {
        return QStringLiteral("%1.%2.%3").arg(reader.Number(0, 3)).arg(reader.Number(0, 300)).arg(reader.Word());
    };
    const std::array<QString, 3> made{version(), version(), version()};
    CheckVersions(made);
    for (const QString& text : texts)
        CheckText(text);
    static_cast<void>(updating::VersionInCaption(texts[0]));
    CheckNumber(reader.Real());
    CheckNumber(double(reader.Long()) / 1000);
    fuzz::Require(!updating::FormatTransferSize(qint32(reader.Long())).isEmpty(), "each size has a text");
    return 0;
}

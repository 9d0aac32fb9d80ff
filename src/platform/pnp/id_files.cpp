#include "pnp/id_files.h"

#include <QFile>
#include <QStringDecoder>
#include <cstring>
#include <optional>

namespace pnp {

namespace {

// Real files are about 1.5 MiB; anything far larger is no ID file.
constexpr qint64 LargestFile = 16LL * 1024 * 1024;

QByteArray ReadWhole(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.isSequential())
        return {};
    // No more is asked for than there is, since room is made for as much.
    QByteArray text = file.read(qMin(file.size(), LargestFile) + 1);
    return text.size() <= LargestFile ? text : QByteArray();
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

// Four hexadecimal digits followed by a blank, as lines of vendors and devices begin.
std::optional<quint16> LeadingId(const char* begin, const char* end) {
    if (end - begin < 6 || (begin[4] != ' ' && begin[4] != '\t'))
        return std::nullopt;
    int value = 0;
    for (int i = 0; i < 4; ++i) {
        const int digit = HexDigit(begin[i]);
        if (digit < 0)
            return std::nullopt;
        value = value << 4 | digit;
    }
    return quint16(value);
}

const char* LineEnd(const char* begin, const char* end) {
    const void* found = std::memchr(begin, '\n', std::size_t(end - begin));
    return found == nullptr ? end : static_cast<const char*>(found);
}

} // namespace

QString DecodeIdName(QByteArrayView bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder.decode(bytes);
    return (decoder.hasError() ? QString::fromLatin1(bytes) : text).trimmed();
}

// One pass over the first characters of all lines. Lines that begin with a tab belong to the vendor above; a comment or
// an empty line ends nothing; any other line (a class section, a broken vendor) ends the vendor's block.
void IdFile::Load() {
    loaded_ = true;
    text_ = ReadWhole(path_);
    const char* const start = text_.constData();
    const char* const end = start + text_.size();
    Vendor* current = nullptr;
    for (const char* line = start; line < end;) {
        const char* const lineEnd = LineEnd(line, end);
        if (*line != '\t' && *line != '#' && *line != '\n' && *line != '\r') {
            if (current != nullptr)
                current->blocks.back().end = line - start;
            current = nullptr;
            if (const std::optional<quint16> id = LeadingId(line, lineEnd)) {
                current = &vendors_[*id];
                if (current->name.end == 0)
                    current->name = {line + 5 - start, lineEnd - start};
                current->blocks.push_back({lineEnd - start, text_.size()});
            }
        }
        line = lineEnd + 1;
    }
}

void IdFile::IndexDevices(Vendor& vendor) const {
    vendor.indexed = true;
    const char* const start = text_.constData();
    for (const Span& block : vendor.blocks) {
        const char* const end = start + block.end;
        for (const char* line = start + block.begin; line < end;) {
            const char* const lineEnd = LineEnd(line, end);
            if (lineEnd - line > 1 && line[0] == '\t' && line[1] != '\t') {
                const std::optional<quint16> id = LeadingId(line + 1, lineEnd);
                if (id && !vendor.devices.contains(*id))
                    vendor.devices.insert(*id, {line + 6 - start, lineEnd - start});
            }
            line = lineEnd + 1;
        }
    }
}

QString IdFile::Decode(Span span) const {
    return DecodeIdName(QByteArrayView(text_.constData() + span.begin, span.end - span.begin));
}

QString IdFile::VendorName(quint16 vendor) {
    if (!loaded_)
        Load();
    const auto found = vendors_.constFind(vendor);
    return found == vendors_.constEnd() ? QString() : Decode(found->name);
}

QString IdFile::DeviceName(quint16 vendor, quint16 device) {
    if (!loaded_)
        Load();
    const auto found = vendors_.find(vendor);
    if (found == vendors_.end())
        return {};
    if (!found->indexed)
        IndexDevices(*found);
    const auto name = found->devices.constFind(device);
    return name == found->devices.constEnd() ? QString() : Decode(*name);
}

QString PnpVendorFile::VendorName(const QString& letters) {
    if (!loaded_) {
        loaded_ = true;
        text_ = "\n" + ReadWhole(path_);
    }
    if (letters.size() != 3)
        return {};
    const QByteArray start = "\n" + letters.toLatin1() + "\t";
    const qsizetype found = text_.indexOf(start);
    if (found < 0)
        return {};
    const qsizetype begin = found + start.size();
    const qsizetype end = text_.indexOf('\n', begin);
    return DecodeIdName(QByteArrayView(text_).sliced(begin, (end < 0 ? text_.size() : end) - begin));
}

} // namespace pnp

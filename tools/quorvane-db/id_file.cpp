#include "id_file.h"

#include <QStringDecoder>
#include <cstring>
#include <optional>

namespace tool {

namespace {

constexpr qsizetype longestLine = 1024; // bytes; names of a tenth of this are cut when they are stored

bool IsHex(char character) {
    return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'f') ||
           (character >= 'A' && character <= 'F');
}

bool IsBlank(char character) { return character == ' ' || character == '\t'; }

// Takes four hexadecimal digits and the blanks behind them off the front; nothing if they are not there.
std::optional<QString> TakeId(QByteArrayView& line) {
    if (line.size() < 4 || (line.size() > 4 && !IsBlank(line[4]))) {
        return std::nullopt;
    }
    for (int i = 0; i < 4; ++i) {
        if (!IsHex(line[i])) {
            return std::nullopt;
        }
    }
    const QString id = QString::fromLatin1(line.first(4)).toUpper();
    line = line.sliced(4);
    while (!line.isEmpty() && IsBlank(line.front())) {
        line = line.sliced(1);
    }
    return id;
}

std::optional<QString> DecodeName(QByteArrayView bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString name = decoder.decode(bytes);
    if (decoder.hasError() || name.contains(QChar(0))) {
        return std::nullopt;
    }
    return name.simplified();
}

// "C 03  Display controller" and its like: sections of classes and languages behind the vendors.
bool IsSection(QByteArrayView line) {
    qsizetype letters = 0;
    while (letters < line.size() && line[letters] >= 'A' && line[letters] <= 'Z') {
        ++letters;
    }
    return letters >= 1 && letters <= 5 && letters < line.size() && line[letters] == ' ';
}

// The lines that are neither empty nor comments, without their line ends.
template <typename Use> void ForEachLine(const QByteArray& text, Use use) {
    const char* at = text.constData();
    const char* const end = at + text.size();
    while (at < end) {
        const void* found = std::memchr(at, '\n', size_t(end - at));
        const char* lineEnd = found == nullptr ? end : static_cast<const char*>(found);
        QByteArrayView line(at, lineEnd - at);
        while (!line.isEmpty() && (line.back() == '\r' || IsBlank(line.back()))) {
            line.chop(1);
        }
        if (!line.isEmpty() && line.front() != '#') {
            use(line);
        }
        at = lineEnd + 1;
    }
}

// Where a line stands: what the tabs in front of the next ones refer to.
class Walk {
  public:
    Walk(SkippedLines& skipped, bool subsystems, const std::function<bool(const IdLine&)>& use)
        : skipped_(skipped), subsystems_(subsystems), use_(use) {}

    void Line(QByteArrayView line) {
        if (line.size() > longestLine) {
            ++skipped_.OverLong;
            Forget(line);
        } else if (line.front() != '\t') {
            VendorLine(line);
        } else if (inSection_) {
            return;
        } else if (line.size() > 1 && line[1] == '\t') {
            SubsystemLine(line.sliced(2));
        } else {
            DeviceLine(line.sliced(1));
        }
    }

    bool MetVendor() const { return !vendors_.isEmpty(); }

  private:
    // Lines below one that is lost belong to nobody rather than to the one before it.
    void Forget(QByteArrayView line) {
        current_.Device.clear();
        if (line.front() != '\t') {
            current_ = IdLine();
            inSection_ = false;
        }
    }

    void Break(QByteArrayView line) {
        ++skipped_.Broken;
        Forget(line);
    }

    // A name that cannot be read costs this line, and what stands below it keeps its place.
    QString Name(QByteArrayView bytes, bool& readable) {
        const std::optional<QString> name = DecodeName(bytes);
        readable = name.has_value();
        if (!readable) {
            ++skipped_.BadlyEncoded;
        }
        return name.value_or(QString());
    }

    void VendorLine(QByteArrayView line) {
        const QByteArrayView whole = line;
        const std::optional<QString> id = TakeId(line);
        if (!id) {
            current_ = IdLine();
            inSection_ = IsSection(whole);
            skipped_.Broken += inSection_ ? 0 : 1;
            return;
        }
        inSection_ = false;
        current_ = IdLine();
        current_.Vendor = *id;
        bool readable = false;
        current_.VendorName = Name(line, readable);
        if (readable && vendors_.contains(*id)) {
            ++skipped_.Duplicate;
            current_.VendorName = vendors_.value(*id);
        } else if (!vendors_.contains(*id)) {
            vendors_.insert(*id, current_.VendorName);
        }
    }

    void DeviceLine(QByteArrayView line) {
        const std::optional<QString> id = TakeId(line);
        if (!id || current_.Vendor.isEmpty()) {
            ++skipped_.Broken;
            current_.Device.clear();
            return;
        }
        bool readable = false;
        current_.Device = *id;
        current_.DeviceName = Name(line, readable);
        if (readable && !use_(current_)) {
            ++skipped_.Duplicate;
        }
    }

    void SubsystemLine(QByteArrayView line) {
        if (!subsystems_) {
            return;
        }
        const std::optional<QString> vendor = TakeId(line);
        const std::optional<QString> device = vendor ? TakeId(line) : std::nullopt;
        if (!device || current_.Device.isEmpty()) {
            ++skipped_.Broken;
            return;
        }
        IdLine subsystem = current_;
        subsystem.SubVendor = *vendor;
        subsystem.SubDevice = *device;
        bool readable = false;
        subsystem.SubsystemName = Name(line, readable);
        if (readable && !use_(subsystem)) {
            ++skipped_.Duplicate;
        }
    }

    SkippedLines& skipped_;
    bool subsystems_;
    const std::function<bool(const IdLine&)>& use_;
    IdLine current_;
    bool inSection_ = false;
    QHash<QString, QString> vendors_;
};

} // namespace

IdFile::IdFile(const QByteArray& text, bool subsystems) : text_(text), subsystems_(subsystems) { CollectVendors(); }

// Ahead of the reading proper, since subsystems name vendors that stand further down.
void IdFile::CollectVendors() {
    ForEachLine(text_, [this](QByteArrayView line) {
        if (line.front() == '\t' || line.size() > longestLine) {
            return;
        }
        if (const std::optional<QString> id = TakeId(line); id && !vendorNames_.contains(*id)) {
            vendorNames_.insert(*id, DecodeName(line).value_or(QString()));
        }
    });
}

bool IdFile::Read(const std::function<bool(const IdLine&)>& use) {
    skipped_ = SkippedLines();
    Walk walk(skipped_, subsystems_, use);
    ForEachLine(text_, [&walk](QByteArrayView line) { walk.Line(line); });
    return walk.MetVendor();
}

} // namespace tool

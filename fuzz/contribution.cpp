// Contribution lines, files of them, keyword files and the filters that devices pass before they are offered.
#include "base/text.h"
#include "contribution/improve_filters.h"
#include "database/contribution_line.h"
#include "fuzz_support.h"
#include "inventory/clean_text.h"
#include "quorvane-db/contribution_file.h"
#include "quorvane-db/csv.h"

namespace {

void CheckLine(const QString& hwid, const QString& name, const QString& manufacturer) {
    const QString line = database::ContributionLine(hwid, name, manufacturer);
    const database::Contribution device = database::SplitContribution(line);
    const auto plain = [](const QString& text) { return !text.contains(u'|'); };
    if (plain(hwid) && plain(name) && plain(manufacturer)) {
        fuzz::Require(device.HardwareId == hwid && device.Name == name && device.Manufacturer == manufacturer,
                      "fields come out as they went in");
    }
    const QString clean = inventory::CleanText(name);
    fuzz::Require(!clean.contains(QStringLiteral("  ")) && !clean.contains(u'\t') && !clean.startsWith(u' ') &&
                      !clean.endsWith(u' '),
                  "a cleaned text has single blanks");
    fuzz::Require(inventory::CleanText(clean) == clean, "a cleaned text stays");
    const tool::JudgedLine judged = tool::Judge(line);
    fuzz::Require(judged.Reason.isEmpty() == (judged.Judgement == tool::Verdict::Good), "a refusal has its reason");
    fuzz::Require(judged.Judgement != tool::Verdict::Good ||
                      (device.Name.size() <= 100 && device.HardwareId.size() <= 125),
                  "a good line fits the tables");
    if (plain(device.HardwareId) && plain(device.Name) && plain(device.Manufacturer)) {
        const database::Contribution stored = tool::Stored(device);
        fuzz::Require(tool::DeviceKey(tool::Stored(stored)) == tool::DeviceKey(stored),
                      "what is stored stays the same");
    }
    if (contribution::IsDeviceWorthHaving(hwid, name, manufacturer))
        fuzz::Require(!name.isEmpty() && !manufacturer.isEmpty(), "nameless devices are not worth having");
    static_cast<void>(contribution::IsGenericId(hwid));
}

void CheckKeywords(const QByteArray& file) {
    for (const QString& keyword : contribution::KeywordsOf(file)) {
        fuzz::Require(!keyword.isEmpty() && !keyword.contains(u'\n') && !keyword.contains(u'\r'),
                      "a keyword is one line that is not empty");
        fuzz::Require(base::ToAnsi(keyword).size() == keyword.size(), "a keyword is as long as its bytes");
    }
}

void CheckFile(const QByteArray& bytes) {
    const QString path = fuzz::WriteFile(QStringLiteral("new_hardware.txt"), bytes);
    int number = 0;
    const QString error = tool::ReadContributions(path, [&number](const tool::JudgedLine& line) {
        fuzz::Require(line.Number > number, "lines come in order");
        number = line.Number;
    });
    fuzz::Require(error.isEmpty() || number == 0, "a file that is refused has no lines");
}

QByteArray Quoted(QByteArray field) { return '"' + field.replace('"', "\"\"") + '"'; }

void CheckCsv(const QByteArray& text) {
    std::vector<QStringList> rows;
    static_cast<void>(tool::ParseCsv(text, rows));
    QByteArray made;
    for (const QStringList& row : rows) {
        QByteArrayList fields;
        for (const QString& field : row)
            fields.append(Quoted(field.toUtf8()));
        made += fields.join(',') + '\n';
    }
    std::vector<QStringList> again;
    fuzz::Require(tool::ParseCsv(made, again) && again == rows, "rows come out as they went in");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::NeedApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    fuzz::Reader reader(data, size);
    const QString hwid = reader.Text();
    const QString name = reader.Text();
    CheckLine(hwid, name, reader.Text());
    CheckKeywords(bytes);
    CheckFile(bytes);
    CheckCsv(bytes);
    return 0;
}

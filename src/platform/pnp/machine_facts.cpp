#include "pnp/machine_facts.h"

#include "pnp/sysfs.h"

namespace pnp {

namespace {

constexpr char FirstWord[] = "quorvane-machine";
// Raised when an older program would read a file wrongly, not when it would merely miss something.
constexpr quint32 Version = 1;

// One line of the file; what a value must not hold to stay one becomes a blank.
std::string Line(std::string key, const QByteArrayList& values) {
    for (const QByteArray& value : values) {
        key += '\t';
        for (const char c : value)
            key += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
    }
    return key + '\n';
}

void TakeLine(const QByteArrayList& words, MachineFacts& facts) {
    const QByteArray& key = words[0];
    const QString value = CleanAttribute(words.value(1).toStdString());
    if (key == "live") {
        facts.live = true;
        facts.kernelRelease = value;
    } else if (key == "processor") {
        facts.processor = value;
    } else if (key == "modules-known") {
        facts.modulesKnown = true;
    } else if (key == "modules") {
        facts.modules[words.value(1).toStdString()] = words.mid(2);
    } else if (key == "blacklist") {
        facts.blacklisted.insert(words.value(1));
    }
}

} // namespace

std::string FactsText(const MachineFacts& facts) {
    std::string text = FirstWord + (' ' + std::to_string(Version)) + '\n';
    if (facts.live)
        text += Line("live", {facts.kernelRelease.toUtf8()});
    if (!facts.processor.isEmpty())
        text += Line("processor", {facts.processor.toUtf8()});
    if (facts.modulesKnown)
        text += Line("modules-known", {});
    for (const auto& [modalias, modules] : facts.modules)
        text += Line("modules", QByteArrayList{QByteArray::fromStdString(modalias)} + modules);
    for (const QByteArray& module : facts.blacklisted)
        text += Line("blacklist", {module});
    return text;
}

bool ParseFacts(const std::string& text, MachineFacts& facts, std::string& complaint) {
    const QByteArrayList lines = QByteArray::fromStdString(text).split('\n');
    const QByteArrayList head = lines.first().split(' ');
    const std::optional<quint32> version =
        head.size() == 2 && head[0] == FirstWord ? ParseDecimal(head[1].toStdString()) : std::nullopt;
    if (!version || *version == 0) {
        complaint = "it is no saved machine";
        return false;
    }
    if (*version > Version) {
        complaint = "it was saved by a newer version of this program";
        return false;
    }
    for (const QByteArray& line : lines.mid(1)) {
        if (const QByteArrayList words = line.split('\t'); !words[0].isEmpty())
            TakeLine(words, facts);
    }
    return true;
}

} // namespace pnp

#include "pnp/module_aliases.h"

#include "pnp/machine_facts.h"

#include <QDir>
#include <QFile>
#include <fnmatch.h>

namespace pnp {

namespace {

// Long enough to tell PCI and USB vendors apart: "pci:v00008086", "usb:v046DpC52".
constexpr qsizetype KeyLength = 13;
constexpr qint64 LargestFile = 64LL * 1024 * 1024;

QByteArray KeyOf(const QByteArray& text) { return text.left(KeyLength); }

bool HasWildcard(const QByteArray& text) { return text.contains('*') || text.contains('?') || text.contains('['); }

} // namespace

bool ModuleAliases::Available() {
    if (!loaded_)
        Load();
    if (sources_.noted != nullptr)
        sources_.noted->modulesKnown = available_;
    return available_;
}

void ModuleAliases::Load() {
    loaded_ = true;
    if (sources_.facts != nullptr) {
        available_ = sources_.facts->modulesKnown;
        return;
    }
    QFile file(sources_.modulesFolder + QStringLiteral("/modules.alias"));
    available_ = file.open(QIODevice::ReadOnly) && !file.isSequential() && file.size() <= LargestFile;
    if (!available_)
        return;
    for (const QByteArray& line : file.readAll().split('\n')) {
        // "alias pattern module"
        const QByteArrayList words = line.simplified().split(' ');
        if (words.size() != 3 || words[0] != "alias")
            continue;
        QByteArray module = words[2];
        module.replace('-', '_');
        const QByteArray key = KeyOf(words[1]);
        const bool literal = key.size() == KeyLength && !HasWildcard(key);
        aliases_[literal ? key : QByteArray()].push_back({words[1], module});
    }
}

void ModuleAliases::LoadBlacklists() {
    blacklistsLoaded_ = true;
    for (const QString& folder : sources_.modprobeFolders) {
        const QDir directory(folder);
        for (const QString& name : directory.entryList({QStringLiteral("*.conf")}, QDir::Files, QDir::Name)) {
            QFile file(directory.filePath(name));
            if (!file.open(QIODevice::ReadOnly) || file.size() > LargestFile)
                continue;
            for (const QByteArray& line : file.readAll().split('\n')) {
                const QByteArrayList words = line.simplified().split(' ');
                if (words.size() >= 2 && words[0] == "blacklist")
                    blacklist_.insert(QByteArray(words[1]).replace('-', '_'));
            }
        }
    }
}

QByteArrayList ModuleAliases::Matching(const std::string& modalias) {
    if (!Available() || modalias.empty())
        return {};
    QByteArrayList modules;
    if (sources_.facts == nullptr)
        modules = MatchingAliases(QByteArray::fromStdString(modalias));
    else if (const auto known = sources_.facts->modules.find(modalias); known != sources_.facts->modules.end())
        modules = known->second;
    if (sources_.noted != nullptr && !modules.isEmpty())
        sources_.noted->modules[modalias] = modules;
    return modules;
}

QByteArrayList ModuleAliases::MatchingAliases(const QByteArray& text) const {
    QByteArrayList modules;
    for (const QByteArray& key : {KeyOf(text), QByteArray()}) {
        const auto found = aliases_.constFind(key);
        if (found == aliases_.constEnd())
            continue;
        for (const Alias& alias : *found) {
            if (fnmatch(alias.pattern.constData(), text.constData(), 0) == 0 && !modules.contains(alias.module))
                modules.append(alias.module);
        }
    }
    return modules;
}

bool ModuleAliases::Blacklisted(const QByteArray& module) {
    if (!blacklistsLoaded_ && sources_.facts == nullptr)
        LoadBlacklists();
    const bool blacklisted =
        sources_.facts == nullptr ? blacklist_.contains(module) : sources_.facts->blacklisted.contains(module);
    if (sources_.noted != nullptr && blacklisted)
        sources_.noted->blacklisted.insert(module);
    return blacklisted;
}

} // namespace pnp

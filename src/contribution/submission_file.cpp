#include "contribution/submission_file.h"

#include "base/paths.h"
#include "base/text.h"
#include "values/program_values.h"

#include <QFile>
#include <QSet>
#include <algorithm>
#include <cstdio>
#include <optional>
#include <unistd.h>

namespace contribution {

namespace {

constexpr qint64 mostUnsent = 64 * 1024 * 1024; // bytes

// In UTF-8: a line must come back as it was, also where the file for the server cannot hold its letters.
QString UnsentPath() { return base::NativePath(values::ProgramFolder() + QStringLiteral("\\new_hardware_unsent.txt")); }

// Nothing where the file is there and cannot be read whole.
std::optional<QStringList> ReadUnsent() {
    const QString path = UnsentPath();
    if (!QFile::exists(path))
        return QStringList();
    const std::optional<QByteArray> bytes = base::ReadPlainFile(path, mostUnsent + 1);
    if (!bytes || bytes->size() > mostUnsent)
        return std::nullopt;
    return QString::fromUtf8(*bytes).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
}

} // namespace

SubmissionFile::SubmissionFile() : lock_(values::ProgramFolder()) {}

bool SubmissionFile::TryToLock() { return lock_.Try(); }

// Written beside its place and moved there, so that a crash meets the lines of before or those of now.
bool SubmissionFile::Keep(const QStringList& lines) {
    const QString path = UnsentPath();
    if (lines.isEmpty())
        return (QFile::remove(path) || !QFile::exists(path)) && lock_.Sync();
    const QString beside = path + QStringLiteral(".new");
    base::Descriptor file = base::MakeFileAnew(beside);
    const QByteArray text = lines.join(QStringLiteral("\r\n")).toUtf8() + "\r\n";
    const bool written = file && base::WriteAll(file, text) && ::fsync(file.Number()) == 0 && file.Close() &&
                         std::rename(QFile::encodeName(beside).constData(), QFile::encodeName(path).constData()) == 0;
    if (!written)
        QFile::remove(beside);
    return written && lock_.Sync();
}

bool SubmissionFile::Begin(const QStringList& lines, const QStringList& known) {
    const std::optional<QStringList> before = ReadUnsent();
    if (!before)
        return false;
    const QSet<QString> settled = QSet<QString>(lines.begin(), lines.end()) + QSet<QString>(known.begin(), known.end());
    std::copy_if(before->begin(), before->end(), std::back_inserter(others_),
                 [&settled](const QString& line) { return !settled.contains(line); });
    if (!Keep(lines + others_))
        return false;
    file_ = base::MakeFileAnew(base::NativePath(SubmissionPath()));
    whole_ = file_ && lock_.Sync();
    return true;
}

void SubmissionFile::Write(const QString& line) {
    whole_ = whole_ && base::WriteAll(file_, base::ToAnsi(line) + "\r\n") && ::fdatasync(file_.Number()) == 0;
}

void SubmissionFile::Sent() { Keep(others_); }

QString SubmissionPath() { return values::ProgramFolder() + QStringLiteral("\\new_hardware.txt"); }

QStringList UnsentLines() {
    base::FolderLock running(values::ProgramFolder());
    return running.TryShared() ? ReadUnsent().value_or(QStringList()) : QStringList();
}

} // namespace contribution

// The whole judgement of a database file that comes from somebody else: sound to its last page, and plausible to its
// last row. Beyond what every opening asks, it reads the file through, so it takes its time.
#pragma once

#include "data/database_rules.h"

#include <QString>
#include <atomic>
#include <optional>

namespace data {

// How its soundness is asked: of every page, or also whether its indexes hold its rows and nothing else.
enum class Soundness { Pages, Indexes };

// Empty, or what is wrong in one line that begins with the path. Touches nothing but the file, so it may run aside
// while the program goes on; `stop` set to true ends it soon, and it gives up by itself when the rules' time is over.
QString JudgeDatabaseFile(const QString& nativePath, const DatabaseRules& rules,
                          const std::atomic<bool>* stop = nullptr, Soundness soundness = Soundness::Pages);

// How many rows a table of the file holds; nothing where that cannot be told within 5 s or before `stop` is true.
std::optional<qint64> CountRows(const QString& nativePath, const DatabaseRules* rules, const QString& table,
                                const std::atomic<bool>& stop);

} // namespace data

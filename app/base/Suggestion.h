#pragma once

#include <QString>
#include <QStringList>

namespace orvenal {

/// The candidate nearest to a mistyped word; empty when none is near.
///
/// Distance: letters inserted, removed, replaced or swapped with their neighbor, upper and lower
/// case alike. At most a third of the word may differ, one letter at least.
QString nearestWord(const QString &word, const QStringList &candidates);

/// "; did you mean "range"?", or nothing when no candidate is near.
QString didYouMean(const QString &word, const QStringList &candidates);

/// "a", "b", "c"
QString quotedList(const QStringList &words);

}  // namespace orvenal

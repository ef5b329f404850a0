#pragma once

#include <QString>

namespace orvenal {

struct GridResult;

/// Writes the nodes that are not masked, one per line: x, y (z), estimate, deviation, variance.
///
/// The first axis varies fastest. Numbers are the shortest that are read back to the same bits; an
/// undefined value is an empty field. `shownName` stands for the file in messages.
void writeGridCsv(const QString &path, const QString &shownName, const GridResult &result);

}  // namespace orvenal

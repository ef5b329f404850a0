#pragma once

#include <QByteArray>
#include <QString>

namespace orvenal {

/// Parts of GEO-EAS files, which hold one thing per line.
namespace GeoEasText {

/// A title line that names the mark of undefined values.
QByteArray title(const QString &title, double undefinedMark);

/// The line with the name of a column.
QByteArray name(const QString &name);

/// Appends a number, or the mark when it is undefined.
void append(QByteArray &line, double value, double undefinedMark);

}  // namespace GeoEasText

}  // namespace orvenal

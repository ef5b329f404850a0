#pragma once

#include <QPair>
#include <QString>
#include <QVector>

namespace orvenal {

/// The program's own version, "0.1.0".
QString programVersion();

/// Names and versions of the program and of what it is built on.
QVector<QPair<QString, QString>> allVersions();

}  // namespace orvenal

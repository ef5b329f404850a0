#pragma once

#include <QPair>
#include <QString>
#include <QVector>

namespace orvenal {

/// Names and versions of the program and of what it is built on.
QVector<QPair<QString, QString>> allVersions();

}  // namespace orvenal

#pragma once

#include <QByteArray>
#include <QJsonValue>
#include <QMap>
#include <QString>
#include <QStringList>

namespace orvenal {

/// A JSON text with comments, as people write jobs.
struct JobText
{
  QJsonValue root;

  /// Keys of each object by its path ("", "grid", "model.structures[0]"), in the order of the text.
  QMap<QString, QStringList> keys;
};

/// Reads JSON in UTF-8 in which `//` and `/* */` comments may stand between all tokens.
///
/// Fails:    UsageErrors. Syntax and ill-formed UTF-8 name line and column (in characters, from 1);
///           a key given twice and a number that no double holds name their path and line. Texts
///           that nest deeper than 64 levels, or have an object of more than 1000 keys, are
///           refused.
JobText parseJobText(const QString &file, const QByteArray &text);

}  // namespace orvenal

#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

namespace orvenal {

/// A text file that is written line by line, in constant memory. A failure is an NbeUserError that
/// names the file; a stop request is thrown as NbeException.
class TextFile
{
public:
  /// `shownName` stands for the file in messages.
  TextFile(const QString &path, const QString &shownName);

  /// Where the current line is composed, with its end.
  QByteArray &text() { return _text; }

  /// To be called now and then; writes when enough has come together.
  void flushSome();

  /// Writes what is left.
  void finish();

private:
  void _flush();

  QFile _file;
  QString _shownName;
  QByteArray _text;
};

}  // namespace orvenal

#pragma once

#include <QByteArray>
#include <QString>

namespace orvenal {

/// A file that is written piece by piece, in constant memory. A failure is an NbeUserError that
/// names the file; a stop request is thrown as NbeException.
class TextFile
{
public:
  /// `shownName` stands for the file in messages.
  TextFile(const QString &path, const QString &shownName);
  ~TextFile();
  TextFile(const TextFile &) = delete;
  TextFile &operator=(const TextFile &) = delete;

  /// Where the next piece is put at the end.
  QByteArray &text() { return _text; }

  /// To be called now and then; writes when enough has come together.
  void flushSome();

  /// Writes what is left.
  void finish();

private:
  void _flush();
  [[noreturn]] void _fail() const;

  QString _shownName;
  int _descriptor;
  QByteArray _text;
};

}  // namespace orvenal

#pragma once

#include <QMutex>
#include <QString>
#include <QStringList>

namespace orvenal {

/// What the program says: results on the standard output; progress, warnings and errors on the
/// standard error. A quiet console says errors only.
///
/// It receives the message channel of the libraries while it lives, and keeps all warnings for the
/// report. There is one console at a time.
class Console
{
public:
  Console();
  ~Console();
  Console(const Console &) = delete;
  Console &operator=(const Console &) = delete;

  void setQuiet(bool quiet) { _quiet = quiet; }
  bool isQuiet() const { return _quiet; }

  /// Leaves the standard output to answer().
  void setResultsOnly(bool resultsOnly) { _resultsOnly = resultsOnly; }

  /// Characters on a line of the standard output's terminal; 80 without one.
  static int getWidth();

  /// Whether the standard error is a terminal that can show a moving line.
  bool isTerminal() const { return _terminal; }

  /// A text (of one or several lines) on the standard output.
  void print(const QString &text);

  /// A text that was asked for, shown by a quiet console too.
  void answer(const QString &text);

  /// Why texts on the standard output were lost; empty when none was, or nobody read on (a closed
  /// pipe).
  QString getAnswerError() const;

  void warn(const QString &text);
  void error(const QString &text);

  /// A line of progress on the standard error.
  void report(const QString &line);

  /// A line that the next one replaces, on a terminal; an empty one removes it.
  void showTransient(const QString &line);

  QStringList getWarnings() const;

private:
  void _writeError(const QString &text);
  QString _prefix(const QString &text, int color) const;

  mutable QMutex _mutex;  // guards what follows, and keeps lines whole
  QStringList _warnings;
  QString _answerError;
  int _transientWidth = 0;
  bool _quiet = false;
  bool _resultsOnly = false;
  bool _terminal;
  bool _colored;
};

}  // namespace orvenal

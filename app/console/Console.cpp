#include "app/console/Console.h"

#include "basic/base/NbbAMessage.h"
#include "basic/base/NbbHtml.h"

#include <QMutexLocker>
#include <QObject>

#include <sys/ioctl.h>
#include <unistd.h>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace orvenal {

namespace {

constexpr int usualWidth = 80;
constexpr int red = 31;
constexpr int yellow = 33;

int widthOf(int descriptor)
{
  winsize size = {};
  return ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : usualWidth;
}

/// False when not all of it could be written.
bool write(std::FILE *stream, const QString &text)
{
  const QByteArray bytes = text.toUtf8();
  const std::size_t n = std::size_t(bytes.size());
  return std::fwrite(bytes.constData(), 1, n, stream) == n && std::fflush(stream) == 0;
}

void receive(Console &console, const NbbAMessage::Record &record)
{
  if (record.channel == NbbAMessage::DEBUG_CHANNEL)
    return;
  const QString text = record.isHtml ? NbbHtml::toPlainText(record.text) : record.text;
  if (record.severity == NbbAMessage::INFORMATION)
    console.report(text);
  else
    console.warn(text);
}

}  // namespace

Console::Console()
    : _terminal(isatty(STDERR_FILENO) && qgetenv("TERM") != "dumb"),
      _colored(_terminal && qEnvironmentVariableIsEmpty("NO_COLOR"))
{
  NbbAMessage::setSink([this](const NbbAMessage::Record &record) { receive(*this, record); });
}

Console::~Console()
{
  showTransient(QString());
  NbbAMessage::setSink(NbbAMessage::Sink());
}

void Console::print(const QString &text)
{
  if (!_quiet && !_resultsOnly)
    answer(text);
}

void Console::answer(const QString &text)
{
  const QMutexLocker locker(&_mutex);
  if (!write(stdout, text + '\n') && errno != EPIPE && _answerError.isEmpty())
    _answerError = QString::fromLocal8Bit(std::strerror(errno));
}

void Console::warn(const QString &text)
{
  const QMutexLocker locker(&_mutex);
  _warnings << text.trimmed();
  if (!_quiet)
    _writeError(_prefix(QObject::tr("warning:"), yellow) + text.trimmed());
}

void Console::error(const QString &text)
{
  const QMutexLocker locker(&_mutex);
  _writeError(_prefix(QStringLiteral("orvenal:"), red) + text.trimmed());
}

void Console::report(const QString &line)
{
  const QMutexLocker locker(&_mutex);
  if (!_quiet)
    _writeError(line);
}

void Console::showTransient(const QString &line)
{
  const QMutexLocker locker(&_mutex);
  if (_quiet || !_terminal || (line.isEmpty() && _transientWidth == 0))
    return;
  const QString shown = line.left(widthOf(STDERR_FILENO) - 1);  // a wrapped line would stay
  write(stderr, '\r' + shown.leftJustified(_transientWidth) +
                    (shown.isEmpty() ? QStringLiteral("\r") : QString()));
  _transientWidth = shown.size();
}

int Console::getWidth()
{
  return isatty(STDOUT_FILENO) ? widthOf(STDOUT_FILENO) : usualWidth;
}

QString Console::getAnswerError() const
{
  const QMutexLocker locker(&_mutex);
  return _answerError;
}

QStringList Console::getWarnings() const
{
  const QMutexLocker locker(&_mutex);
  return _warnings;
}

/// The word in front of a message, and a blank.
QString Console::_prefix(const QString &text, int color) const
{
  return _colored ? QStringLiteral("\033[%1m%2\033[0m ").arg(QString::number(color), text)
                  : text + ' ';
}

void Console::_writeError(const QString &text)
{
  if (_transientWidth > 0) {
    write(stderr, '\r' + QString(_transientWidth, ' ') + '\r');
    _transientWidth = 0;
  }
  write(stderr, text + '\n');
}

}  // namespace orvenal

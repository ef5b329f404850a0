#include "app/console/Console.h"

#include "basic/base/NbbAMessage.h"
#include "basic/base/NbbHtml.h"

#include <QMutexLocker>
#include <QObject>

#include <unistd.h>
#include <cstdio>

namespace orvenal {

namespace {

void write(std::FILE *stream, const QString &text)
{
  const QByteArray bytes = text.toUtf8();
  std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stream);
  std::fflush(stream);
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

Console::Console() : _terminal(isatty(STDERR_FILENO))
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
  if (!_quiet)
    answer(text);
}

void Console::answer(const QString &text)
{
  const QMutexLocker locker(&_mutex);
  write(stdout, text + '\n');
}

void Console::warn(const QString &text)
{
  const QMutexLocker locker(&_mutex);
  _warnings << text.trimmed();
  if (!_quiet)
    _writeError(QObject::tr("warning: ") + text.trimmed());
}

void Console::error(const QString &text)
{
  const QMutexLocker locker(&_mutex);
  _writeError(QObject::tr("orvenal: ") + text.trimmed());
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
  write(stderr, '\r' + line.leftJustified(_transientWidth) +
                    (line.isEmpty() ? QStringLiteral("\r") : QString()));
  _transientWidth = line.size();
}

QStringList Console::getWarnings() const
{
  const QMutexLocker locker(&_mutex);
  return _warnings;
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

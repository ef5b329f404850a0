#include "basic/base/NbbAMessage.h"

#include "basic/base/NbbDebug.h"
#include "basic/base/NbbError.h"
#include "basic/base/NbbHtml.h"
#include "basic/base/NbbMessage.h"

#include <QLoggingCategory>
#include <QMutex>
#include <QMutexLocker>

namespace {

Q_LOGGING_CATEGORY(lcMessage, "orvenal.message")

void log(NbbAMessage::Channel channel, NbbAMessage::Severity severity, const QString &line)
{
  if (severity == NbbAMessage::ERROR)
    qCCritical(lcMessage).noquote() << line;
  else if (severity == NbbAMessage::WARNING)
    qCWarning(lcMessage).noquote() << line;
  else if (channel == NbbAMessage::DEBUG_CHANNEL)
    qCDebug(lcMessage).noquote() << line;
  else
    qCInfo(lcMessage).noquote() << line;
}

/// Writes whole lines to the logging category; what printInline() sends waits for the line's end.
class LoggingSink
{
public:
  void operator()(const NbbAMessage::Record &record)
  {
    _line += record.isHtml ? NbbHtml::toPlainText(record.text) : record.text;
    if (!record.endsLine)
      return;
    log(record.channel, record.severity, _line);
    _line.clear();
  }

private:
  QString _line;
};

struct Sinks
{
  QMutex mutex{QMutex::Recursive};  // a sink may print
  NbbAMessage::Sink installed;
  LoggingSink logging;
  bool lineIsOpen = false;
};

Sinks &sinks()
{
  static Sinks theSinks;
  return theSinks;
}

NbbAMessage::Record makeRecord(NbbAMessage::Channel channel, NbbAMessage::Severity severity,
                               const QString &text)
{
  NbbAMessage::Record record;
  record.channel = channel;
  record.severity = severity;
  record.text = text;
  if (severity == NbbAMessage::WARNING)
    record.color = NbbHtml::WarningColor;
  else if (severity == NbbAMessage::ERROR)
    record.color = NbbHtml::ErrorColor;
  return record;
}

}  // namespace

NbbAMessage::Sink NbbAMessage::setSink(const Sink &sink)
{
  Sinks &all = sinks();
  QMutexLocker lock(&all.mutex);
  Sink previous = all.installed;
  all.installed = sink;
  return previous;
}

void NbbAMessage::print(const QString &text, const QString &color)
{
  Record record = makeRecord(MESSAGE_CHANNEL, INFORMATION, text);
  record.color = color;
  _send(record);
}

void NbbAMessage::printInline(const QString &text, const QString &color)
{
  Record record = makeRecord(MESSAGE_CHANNEL, INFORMATION, text);
  record.color = color;
  record.endsLine = false;
  _send(record);
}

void NbbAMessage::printEmptyLine()
{
  flush();
  _send(makeRecord(MESSAGE_CHANNEL, INFORMATION, QString()));
}

void NbbAMessage::printHtml(const QString &html)
{
  Record record = makeRecord(MESSAGE_CHANNEL, INFORMATION, html);
  record.isHtml = true;
  _send(record);
}

void NbbAMessage::flush()
{
  Sinks &all = sinks();
  QMutexLocker lock(&all.mutex);
  if (all.lineIsOpen)
    _send(makeRecord(MESSAGE_CHANNEL, INFORMATION, QString()));
}

void NbbAMessage::_send(const Record &record)
{
  Sinks &all = sinks();
  QMutexLocker lock(&all.mutex);
  all.lineIsOpen = !record.endsLine;
  if (all.installed) {
    const Sink sink = all.installed;  // it may replace itself
    sink(record);
  } else {
    all.logging(record);
  }
}

void NbbMessage::printWarning(const QString &text)
{
  _send(makeRecord(MESSAGE_CHANNEL, WARNING, text));
}

void NbbMessage::printError(const QString &text)
{
  _send(makeRecord(MESSAGE_CHANNEL, ERROR, text));
}

void NbbDebug::print(const QString &text)
{
  _send(makeRecord(DEBUG_CHANNEL, INFORMATION, text));
}

void NbbDebug::printWarning(const QString &text)
{
  _send(makeRecord(DEBUG_CHANNEL, WARNING, text));
}

void NbbDebug::printError(const QString &text)
{
  _send(makeRecord(DEBUG_CHANNEL, ERROR, text));
}

void NbbError::printError(const QString &text)
{
  _send(makeRecord(ERROR_CHANNEL, ERROR, text));
}

void NbbError::popupWarning(const QString &text)
{
  Record record = makeRecord(ERROR_CHANNEL, WARNING, text);
  record.isPopup = true;
  _send(record);
}

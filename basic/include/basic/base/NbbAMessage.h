#pragma once

#include <QString>

#include <functional>

/// The message channel: what the libraries tell the user and the log.
///
/// Every message goes to one sink, which a program (or a test) may replace; the default sink writes
/// to Qt's logging category "orvenal.message", one record per line. Calls may come from any thread;
/// the sink is called by one thread at a time.
class NbbAMessage
{
public:
  enum Channel {
    MESSAGE_CHANNEL,  ///< the user's message window
    DEBUG_CHANNEL,    ///< diagnostics
    ERROR_CHANNEL     ///< errors, and what should be put before the user's eyes
  };
  enum Severity { INFORMATION, WARNING, ERROR };

  struct Record
  {
    Channel channel = MESSAGE_CHANNEL;
    Severity severity = INFORMATION;
    bool isHtml = false;   ///< `text` is HTML, not plain text
    bool endsLine = true;  ///< false: what follows continues the line
    bool isPopup = false;  ///< to be shown at once
    QString color;         ///< colour of the text, empty for the usual one
    QString text;
  };

  using Sink = std::function<void(const Record &)>;

  /// Replaces the sink and returns the one before; an empty sink stands for the default one.
  static Sink setSink(const Sink &sink);

  /// One line of plain text (or several, separated by line breaks).
  static void print(const QString &text, const QString &color = QString());

  /// Text that the next message continues.
  static void printInline(const QString &text, const QString &color = QString());

  static void printEmptyLine();

  /// A piece of HTML.
  static void printHtml(const QString &html);

  /// Ends a line that printInline() left open.
  static void flush();

protected:
  static void _send(const Record &record);
};

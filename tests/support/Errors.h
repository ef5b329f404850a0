#pragma once

#include <gtest/gtest.h>

#include <QString>
#include <QStringList>

#include "basic/base/NbbAMessage.h"
#include "basic/error/NbeError.h"

/// What operations throw and print.
namespace testsupport {

/// The text of the error that `action` throws; "nothing thrown" when it throws none.
template <class Action>
QString errorOf(Action action)
{
  try {
    action();
  } catch (const NbeError &error) {
    return error.getMessage();
  }
  return QStringLiteral("nothing thrown");
}

/// Expects a programming error in the assertion form with that source path and condition.
template <class Action>
void expectAssertion(const QString &path, const QString &condition, Action action)
{
  const QString text = errorOf(action);
  EXPECT_TRUE(text.endsWith(QStringLiteral("' in file '%1' failed:\n\n%2").arg(path, condition)))
      << "expected: " << qPrintable(path) << ": " << qPrintable(condition)
      << "\nthrown:   " << qPrintable(text);
}

/// Collects what is printed on the message channel while it lives.
class PrintedMessages
{
public:
  PrintedMessages()
      : _previous(NbbAMessage::setSink(
            [this](const NbbAMessage::Record &record) { texts << record.text; }))
  {
  }
  ~PrintedMessages() { NbbAMessage::setSink(_previous); }
  PrintedMessages(const PrintedMessages &) = delete;
  PrintedMessages &operator=(const PrintedMessages &) = delete;

  QStringList texts;

private:
  NbbAMessage::Sink _previous;
};

}  // namespace testsupport

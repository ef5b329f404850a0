#pragma once

#include <QException>
#include <QString>

/// Base of every error that the libraries throw, by value; catch it by reference.
///
/// The family derives from QException, so an error also crosses QtConcurrent. Catch NbeException
/// (an interruption) before NbeError, and NbeError before std::exception.
class NbeError : public QException
{
public:
  enum ErrorType {
    NO_ERROR_TYPE = 0,
    USER = 1,          ///< a condition that the user can mend
    PROGRAMMING = 2,   ///< misuse of an interface
    MEMORY = 3,        ///< a memory limit
    INTERRUPTION = 4,  ///< a run was asked to stop
    STORAGE = 5,       ///< reading or writing stored data
    UNKNOWN = 6        ///< something thrown by code that is not ours
  };

  NbeError(ErrorType type, const QString &message, Qt::TextFormat format = Qt::PlainText);

  /// The same error, of the same type, with `message` put in front of its text.
  NbeError(const NbeError &error, const QString &message, Qt::TextFormat format = Qt::PlainText);

  ~NbeError() override;

  ErrorType getErrorType() const { return _type; }
  const QString &getMessage() const { return _message; }
  Qt::TextFormat getTextFormat() const { return _format; }

  /// The message in UTF-8.
  const char *what() const noexcept override;

  void raise() const override;
  NbeError *clone() const override;

private:
  ErrorType _type;
  QString _message;
  Qt::TextFormat _format;
  QByteArray _utf8;
};

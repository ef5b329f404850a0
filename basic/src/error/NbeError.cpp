#include "basic/error/NbeError.h"

#include "basic/error/NbeException.h"
#include "basic/error/NbeMemoryError.h"
#include "basic/error/NbeProgrammingError.h"
#include "basic/error/NbeUserError.h"

NbeError::NbeError(ErrorType type, const QString &message, Qt::TextFormat format)
    : _type(type), _message(message), _format(format), _utf8(message.toUtf8())
{
}

NbeError::NbeError(const NbeError &error, const QString &message, Qt::TextFormat format)
    : NbeError(error._type, message + error._message, format)
{
}

NbeError::~NbeError() = default;

const char *NbeError::what() const noexcept
{
  return _utf8.constData();
}

void NbeError::raise() const
{
  throw *this;
}

NbeError *NbeError::clone() const
{
  return new NbeError(*this);
}

NbeUserError::NbeUserError(const QString &message, Qt::TextFormat format)
    : NbeError(USER, message, format)
{
}

void NbeUserError::raise() const
{
  throw *this;
}

NbeUserError *NbeUserError::clone() const
{
  return new NbeUserError(*this);
}

NbeProgrammingError::NbeProgrammingError(const QString &message, Qt::TextFormat format)
    : NbeError(PROGRAMMING, message, format)
{
}

void NbeProgrammingError::raise() const
{
  throw *this;
}

NbeProgrammingError *NbeProgrammingError::clone() const
{
  return new NbeProgrammingError(*this);
}

NbeMemoryError::NbeMemoryError(const QString &message, Qt::TextFormat format)
    : NbeError(MEMORY, message, format)
{
}

void NbeMemoryError::raise() const
{
  throw *this;
}

NbeMemoryError *NbeMemoryError::clone() const
{
  return new NbeMemoryError(*this);
}

NbeException::NbeException() : NbeError(INTERRUPTION, QString()) {}

void NbeException::raise() const
{
  throw *this;
}

NbeException *NbeException::clone() const
{
  return new NbeException(*this);
}

#pragma once

#include "basic/error/NbeError.h"

/// Misuse of an interface or an impossible configuration.
class NbeProgrammingError : public NbeError
{
public:
  explicit NbeProgrammingError(const QString &message, Qt::TextFormat format = Qt::PlainText);

  void raise() const override;
  NbeProgrammingError *clone() const override;
};

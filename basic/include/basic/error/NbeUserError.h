#pragma once

#include "basic/error/NbeError.h"

/// A condition that the user can mend; the message is shown as it is.
class NbeUserError : public NbeError
{
public:
  explicit NbeUserError(const QString &message, Qt::TextFormat format = Qt::PlainText);

  void raise() const override;
  NbeUserError *clone() const override;
};

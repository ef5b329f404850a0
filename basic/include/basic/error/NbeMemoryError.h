#pragma once

#include "basic/error/NbeError.h"

/// There is not enough memory, or a memory budget is too small.
class NbeMemoryError : public NbeError
{
public:
  explicit NbeMemoryError(const QString &message, Qt::TextFormat format = Qt::PlainText);

  void raise() const override;
  NbeMemoryError *clone() const override;
};

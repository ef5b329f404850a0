#pragma once

#include "basic/error/NbeError.h"

/// The interruption of a run: somebody asked it to stop. Carries no message.
class NbeException : public NbeError
{
public:
  NbeException();

  void raise() const override;
  NbeException *clone() const override;
};

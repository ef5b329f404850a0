#pragma once

#include "basic/error/NbeUserError.h"

namespace orvenal {

/// The command line or the job is wrong in itself, whatever the data files hold. The program ends
/// with exit code 2; every other error gives 1.
class UsageError : public NbeUserError
{
public:
  using NbeUserError::NbeUserError;

  void raise() const override { throw *this; }
  UsageError *clone() const override { return new UsageError(*this); }
};

}  // namespace orvenal

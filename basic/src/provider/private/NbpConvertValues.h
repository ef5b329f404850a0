#pragma once

#include "basic/data/NbdValueConversion.h"
#include "basic/error/NbeError.h"

#include <QObject>

/// Copies n values between storage types; an error where there is no conversion.
template <class To, class From>
void convertValues(const From *in, qint64 n, To *out)
{
  if constexpr (nbdIsConvertible<To, From>)
    nbdConvertArray(in, n, out);
  else
    throw NbeError(NbeError::STORAGE,
                   QObject::tr("Points and colours cannot be converted to other types."));
}

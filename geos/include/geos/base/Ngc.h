#pragma once

/// Plain enumerations of the calculators.
namespace Ngc {

/// What an interpolation does after a failure at one target.
enum OnErrorBehavior { ON_ERROR_CONTINUE = 0, ON_ERROR_STOP = 1 };

/// Kinds of failure at one target.
enum InterpolError {
  INTERPOL_ERROR_SYSTEM = 1,         ///< system not solved
  INTERPOL_ERROR_NEIGHBORHOOD = 3,   ///< neighborhood or drift data
  INTERPOL_ERROR_TRANSFORMATION = 4  ///< transformation of values
};

}  // namespace Ngc

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

/// Where the known means of simple kriging come from.
enum SimpleKrigingOption {
  SIMPLE_KRIGING_CONSTANT_MEAN = 0,  ///< one constant per variable
  SIMPLE_KRIGING_LOCAL_MEAN = 1      ///< one variable per variable, known at samples and targets
};

}  // namespace Ngc

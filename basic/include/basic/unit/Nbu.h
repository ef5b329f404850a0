#pragma once

#include <QString>

/// Symbols of units that the libraries name.
namespace Nbu {

extern const QString ANGLE_DEGREE;  ///< degree of angle
extern const QString PER_RAW;       ///< a fraction of 1, not in percent

}  // namespace Nbu

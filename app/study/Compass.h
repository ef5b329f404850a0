#pragma once

#include "basic/geom/NbgRotation.h"

#include <QString>

namespace orvenal {

/// How a job gives horizontal angles: azimuths clockwise from north (Y), or mathematical angles
/// counter-clockwise from east (X).
enum class AngleConvention { AZIMUTH, MATHEMATICAL };

/// The directions that people speak of, and the rotations of the libraries. Angles in degrees.
///
/// Azimuth: clockwise from north (Y). Dip: positive downward. Pitch: turn about the U axis that
/// azimuth and dip give; without pitch the V axis is horizontal. The libraries turn
/// counter-clockwise from east (X) about Z; nothing outside this file converts.
namespace Compass {

/// A frame by azimuth and dip of its U axis, and pitch about it.
NbgRotation frame(double azimuth, double dip, double pitch);

/// The inverse of frame(): azimuth, dip and pitch.
NbgVector3D anglesOf(const NbgRotation &rotation);

/// A horizontal grid whose second axis (Y, rows) points to this azimuth; the first one (X, columns)
/// points 90 degrees further, and 0 is the grid that is not turned.
NbgRotation gridFrame(double azimuthOfRows);

/// The inverse of gridFrame(), in [0, 360).
double azimuthOfRows(const NbgRotation &rotation);

/// Azimuth of a horizontal angle that is given in a convention.
double toAzimuth(double angle, AngleConvention convention);

/// Azimuth of the second axis of a grid, of which a convention gives that azimuth, or the
/// counter-clockwise turn of the grid (from east to its first axis).
double toAzimuthOfRows(double angle, AngleConvention convention);

/// Azimuth in [0, 360) of a direction; 0 for a vertical one.
double azimuth(const NbgVector3D &direction);

/// Dip of a direction, in [-90, 90].
double dip(const NbgVector3D &direction);

/// "azimuth 30°", or "azimuth 30°, dip 10°" in three dimensions.
QString describe(const NbgVector3D &direction, int nDimensions);

}  // namespace Compass

}  // namespace orvenal

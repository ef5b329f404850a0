#pragma once

#include "basic/geom/NbgARotationConvention.h"

/// Convention 1: azimuth (clockwise from north) and dip (downward) of the U axis, and pitch about
/// U. It is convention 0 with a1 = 90 - azimuth, a2 = dip, a3 = pitch.
class NbgRotationConventionGeologist : public NbgARotationConvention
{
public:
  static constexpr int ID = 1;

  int getId() const override { return ID; }
  QString getName() const override;
  QString getAngleName(int angle) const override;
  NbgVector3D toDefaultAngles(const NbgVector3D &angles) const override;
  NbgVector3D fromDefaultAngles(const NbgVector3D &angles) const override;
};

#pragma once

#include "basic/geom/NbgARotationConvention.h"

class NbgDirection;
class NbgRotation;

/// Convention 0: three successive right-handed rotations in degrees, M = Rz(a1) Ry(a2) Rx(a3).
class NbgRotationConventionDefault : public NbgARotationConvention
{
public:
  static constexpr int ID = 0;

  int getId() const override { return ID; }
  QString getName() const override;
  QString getAngleName(int angle) const override;
  NbgVector3D toDefaultAngles(const NbgVector3D &angles) const override { return angles; }
  NbgVector3D fromDefaultAngles(const NbgVector3D &angles) const override { return angles; }

  /// M = Rz(a1) Ry(a2) Rx(a3), exact for multiples of 90 degrees.
  static NbgRotationMatrix matrixFromAngles(const NbgVector3D &angles);

  /// The inverse: a1 and a3 in (-180, 180], a2 in [-90, 90]; a3 = 0 when U is vertical.
  static NbgVector3D anglesFromMatrix(const NbgRotationMatrix &matrix);

  /// The direction of the U axis, and the rotation without pitch whose U axis is the direction.
  static NbgDirection directionFromRotation(const NbgRotation &rotation);
  static NbgRotation rotationFromDirection(const NbgDirection &direction);

  /// Name of an unsigned direction: its compass azimuth in [0, 180), "N45", with the dip added when
  /// it is not 0, "N45 Dip 30".
  static QString directionName(const NbgVector3D &direction);
};

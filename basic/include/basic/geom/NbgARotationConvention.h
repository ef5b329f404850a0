#pragma once

#include "basic/geom/NbgVector3D.h"

class NbgRotationMatrix;

/// What the three angles of a rotation mean. Every convention converts its angles to and from those
/// of convention 0, which fixes the matrix: M = Rz(a1) Ry(a2) Rx(a3).
class NbgARotationConvention
{
public:
  virtual ~NbgARotationConvention() = default;

  virtual int getId() const = 0;
  virtual QString getName() const = 0;

  /// Names of the three angles, as shown in texts.
  virtual QString getAngleName(int angle) const = 0;

  /// Angles of this convention to and from convention 0, in degrees.
  virtual NbgVector3D toDefaultAngles(const NbgVector3D &angles) const = 0;
  virtual NbgVector3D fromDefaultAngles(const NbgVector3D &angles) const = 0;

  NbgRotationMatrix toMatrix(const NbgVector3D &angles) const;

  /// Angles of a rotation matrix. Where two angles turn about the same axis (U vertical) the third
  /// angle is 0.
  NbgVector3D toAngles(const NbgRotationMatrix &matrix) const;

  /// "Z=30 Y=0 X=0": the names and values of the angles.
  QString toText(const NbgVector3D &angles) const;
};

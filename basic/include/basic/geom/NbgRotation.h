#pragma once

#include "basic/base/NbbASerializable.h"
#include "basic/base/NbbIDebuggable.h"
#include "basic/geom/NbgRotationMatrix.h"

class NbgAngle;
class NbgARotationConvention;
class NbgEAxisType;
class NbgEDimension;

/// Orientation of a local frame (U, V, W) in the world (X east, Y north, Z up).
///
/// Kept as three angles in degrees under a convention, and as the matrix M whose columns are the
/// local axes in world coordinates: localToWorld(v) = M v, worldToLocal(v) = M' v. Below three
/// dimensions the frame turns about Z only: the second and third angle are 0 and setting them does
/// nothing.
///
/// Equality compares matrix elements, whatever the conventions.
class NbgRotation : public NbbASerializable, public NbbIDebuggable
{
public:
  /// The identity: convention 0, angles 0, three dimensions.
  NbgRotation() = default;

  /// About Z, counter-clockwise from X.
  explicit NbgRotation(const NbgAngle &aroundZ);

  /// From three angles in degrees. An unknown convention is a programming error.
  NbgRotation(double angle1, double angle2, double angle3, int conventionId = 0);

  /// From a matrix, kept as it is; the angles are derived. A matrix that is not a rotation to 1e-6
  /// is a programming error.
  explicit NbgRotation(const NbgRotationMatrix &matrix, int conventionId = 0);

  /// The rotation without pitch whose U axis has this direction; the identity for the null vector.
  static NbgRotation fromDirection(const NbgVector3D &direction);

  double getAngle1() const { return _angles.x(); }
  double getAngle2() const { return _angles.y(); }
  double getAngle3() const { return _angles.z(); }
  const NbgVector3D &getAngles() const { return _angles; }

  /// Angles in degrees, in the meaning of the convention.
  void setAngle1(double angle);
  void setAngle2(double angle);
  void setAngle3(double angle);
  void setAngles(double angle1, double angle2, double angle3);

  /// The elementary rotations of convention 0 about X, Y and Z, in degrees, whatever the
  /// convention.
  void setAngleX(double angle);
  void setAngleY(double angle);
  void setAngleZ(double angle);

  /// Changes the meaning of the angles and converts them; the orientation stays. An unknown
  /// convention is a programming error.
  void setConvention(int conventionId);
  int getConventionId() const { return _conventionId; }

  /// Below three dimensions what turns about other axes than Z is dropped.
  void setDimension(const NbgEDimension &dimension);
  const NbgEDimension &getDimension() const;

  /// Takes this rotation as given in the frame of `reference` and makes it relative to the world:
  /// M becomes M(reference) M.
  void setRelativeTo(const NbgRotation &reference);

  const NbgRotationMatrix &getMatrix() const { return _matrix; }

  NbgVector3D localToWorld(const NbgVector3D &v) const { return _matrix.rotate(v); }
  NbgVector3D worldToLocal(const NbgVector3D &v) const { return _matrix.rotateBack(v); }
  NbgVector3D rotate(const NbgVector3D &v) const { return localToWorld(v); }

  /// The same for n vectors, xyz-interleaved; `in` and `out` may be the same array. Each gets the
  /// bits that the single form gives.
  void localToWorld(qint64 n, const double *in, double *out) const;
  void worldToLocal(qint64 n, const double *in, double *out) const;

  /// The same on one array per coordinate, in place.
  void localToWorld(qint64 n, double *x, double *y, double *z) const;
  void worldToLocal(qint64 n, double *x, double *y, double *z) const;

  /// The opposite rotation (transposed matrix), in the same convention.
  NbgRotation inverse() const;

  /// M T M': a tensor (3 x 3, column by column) given in the local frame, in the world.
  void applyRotTRot(const double *tensor, double *result) const;

  /// The local axes in world coordinates.
  NbgVector3D getAxisX() const { return _matrix.getColumn(0); }
  NbgVector3D getAxisY() const { return _matrix.getColumn(1); }
  NbgVector3D getAxisZ() const { return _matrix.getColumn(2); }
  NbgVector3D getAxis(const NbgEAxisType &axis) const;

  /// Name of the direction of the U axis: its compass azimuth in [0, 180), "N45", with the dip
  /// added when it is not 0.
  QString getUDirectionName() const;

  bool isAroundZOnly(double tolerance = 1e-9) const;
  bool isIdentity(double tolerance = 1e-9) const { return _matrix.isIdentity(tolerance); }
  bool isEqual(const NbgRotation &other, double tolerance = 1e-9) const
  {
    return _matrix.isEqual(other._matrix, tolerance);
  }

  /// The angles with their names in the convention, "Z=30 Y=0 X=0".
  QString toString() const;
  QString debug(int level) const override;

protected:
  QList<unsigned int> _serializedVersions() const override;
  unsigned int _currentSerializedVersion() const override;
  void _serialize(QDataStream &stream) const override;
  void _unserialize(QDataStream &stream, unsigned int version) override;
  bool _hasValidFirstVersion() const override;

private:
  const NbgARotationConvention &_convention() const;
  void _setAngles(const NbgVector3D &angles);
  void _setDefaultAngle(int angle, double value);
  void _setMatrix(const NbgRotationMatrix &matrix);

  int _nDim = 3;
  int _conventionId = 0;
  NbgVector3D _angles;
  NbgRotationMatrix _matrix;
};

/// The rotation by b, then by a; convention of b.
NbgRotation operator*(const NbgRotation &a, const NbgRotation &b);

inline bool operator==(const NbgRotation &a, const NbgRotation &b)
{
  return a.isEqual(b);
}
inline bool operator!=(const NbgRotation &a, const NbgRotation &b)
{
  return !(a == b);
}

#include "basic/geom/NbgRotation.h"

#include "basic/error/NbeAssertion.h"
#include "basic/geom/NbgAngle.h"
#include "basic/geom/NbgEAxisType.h"
#include "basic/geom/NbgEDimension.h"
#include "basic/geom/NbgRotationConventionDefault.h"
#include "basic/geom/NbgRotationConventionRegistry.h"

#include <QDataStream>

namespace {

constexpr unsigned int VERSION = 210101;
constexpr double MATRIX_TOLERANCE = 1e-6;

const NbgARotationConvention *findConvention(int id)
{
  return NbgRotationConventionRegistry::instance().getConvention(id);
}

void checkConvention(int id)
{
  if (!findConvention(id))
    NBE_FAIL(QStringLiteral("Unknown rotation convention"));
}

}  // namespace

NbgRotation::NbgRotation(const NbgAngle &aroundZ)
{
  _setAngles({aroundZ.getDegreeValue(), 0., 0.});
}

NbgRotation::NbgRotation(double angle1, double angle2, double angle3, int conventionId)
    : _conventionId(conventionId)
{
  checkConvention(conventionId);
  _setAngles({angle1, angle2, angle3});
}

NbgRotation::NbgRotation(const NbgRotationMatrix &matrix, int conventionId)
    : _conventionId(conventionId)
{
  checkConvention(conventionId);
  if (!matrix.isOrthonormal(MATRIX_TOLERANCE))
    NBE_FAIL(QStringLiteral("The matrix is not a rotation"));
  _setMatrix(matrix);
}

NbgRotation NbgRotation::fromDirection(const NbgVector3D &direction)
{
  if (direction == NbgVector3D::Null)
    return NbgRotation();
  double azimuth, dip;
  direction.getAzimuthDip(azimuth, dip);
  return NbgRotation(NbgAngle::fromRadians(direction.dirHorizontal()).getDegreeValue(), dip, 0.);
}

void NbgRotation::setAngle1(double angle)
{
  _setAngles({angle, _angles.y(), _angles.z()});
}

void NbgRotation::setAngle2(double angle)
{
  _setAngles({_angles.x(), angle, _angles.z()});
}

void NbgRotation::setAngle3(double angle)
{
  _setAngles({_angles.x(), _angles.y(), angle});
}

void NbgRotation::setAngles(double angle1, double angle2, double angle3)
{
  _setAngles({angle1, angle2, angle3});
}

void NbgRotation::setAngleX(double angle)
{
  _setDefaultAngle(2, angle);
}

void NbgRotation::setAngleY(double angle)
{
  _setDefaultAngle(1, angle);
}

void NbgRotation::setAngleZ(double angle)
{
  _setDefaultAngle(0, angle);
}

void NbgRotation::setConvention(int conventionId)
{
  checkConvention(conventionId);
  const NbgVector3D angles = _convention().toDefaultAngles(_angles);
  _conventionId = conventionId;
  _angles = _convention().fromDefaultAngles(angles);
}

void NbgRotation::setDimension(const NbgEDimension &dimension)
{
  _nDim = dimension.getNDim();
  if (_nDim < 3 && isAroundZOnly())
    _setMatrix(_matrix);
  else if (_nDim < 3)
    _setAngles(_angles);
}

const NbgEDimension &NbgRotation::getDimension() const
{
  return NbgEDimension::fromNDim(_nDim);
}

void NbgRotation::setRelativeTo(const NbgRotation &reference)
{
  _setMatrix(reference._matrix * _matrix);
}

void NbgRotation::localToWorld(qint64 n, const double *in, double *out) const
{
  const NbgRotationMatrix matrix = _matrix;
  for (qint64 i = 0; i < 3 * n; i += 3) {
    const NbgVector3D v = matrix.rotate({in[i], in[i + 1], in[i + 2]});
    out[i] = v.x();
    out[i + 1] = v.y();
    out[i + 2] = v.z();
  }
}

void NbgRotation::worldToLocal(qint64 n, const double *in, double *out) const
{
  const NbgRotationMatrix matrix = _matrix;
  for (qint64 i = 0; i < 3 * n; i += 3) {
    const NbgVector3D v = matrix.rotateBack({in[i], in[i + 1], in[i + 2]});
    out[i] = v.x();
    out[i + 1] = v.y();
    out[i + 2] = v.z();
  }
}

void NbgRotation::localToWorld(qint64 n, double *x, double *y, double *z) const
{
  const NbgRotationMatrix matrix = _matrix;
  for (qint64 i = 0; i < n; ++i) {
    const NbgVector3D v = matrix.rotate({x[i], y[i], z[i]});
    x[i] = v.x();
    y[i] = v.y();
    z[i] = v.z();
  }
}

void NbgRotation::worldToLocal(qint64 n, double *x, double *y, double *z) const
{
  const NbgRotationMatrix matrix = _matrix;
  for (qint64 i = 0; i < n; ++i) {
    const NbgVector3D v = matrix.rotateBack({x[i], y[i], z[i]});
    x[i] = v.x();
    y[i] = v.y();
    z[i] = v.z();
  }
}

NbgRotation NbgRotation::inverse() const
{
  NbgRotation result(*this);
  result._setMatrix(_matrix.inverse());
  return result;
}

void NbgRotation::applyRotTRot(const double *tensor, double *result) const
{
  // T M' has the rows of M, seen by T, as columns; M then turns each of them.
  NbgVector3D columns[3];
  const NbgRotationMatrix local(tensor);
  for (int column = 0; column < 3; ++column) {
    const NbgVector3D row(_matrix.get(column, 0), _matrix.get(column, 1), _matrix.get(column, 2));
    columns[column] = _matrix.rotate(local.rotate(row));
  }
  for (int i = 0; i < 9; ++i)
    result[i] = columns[i / 3][i % 3];
}

NbgVector3D NbgRotation::getAxis(const NbgEAxisType &axis) const
{
  return _matrix.getColumn(axis.getValue());
}

QString NbgRotation::getUDirectionName() const
{
  return NbgRotationConventionDefault::directionName(getAxisX());
}

bool NbgRotation::isAroundZOnly(double tolerance) const
{
  return (getAxisZ() - NbgVector3D::Z).chebychevDist() <= tolerance;
}

QString NbgRotation::toString() const
{
  return _convention().toText(_angles);
}

QString NbgRotation::debug(int level) const
{
  return QStringLiteral("%1Rotation (%2): %3\n")
      .arg(QString(2 * qMax(level, 0), ' '), _convention().getName(), toString());
}

QList<unsigned int> NbgRotation::_serializedVersions() const
{
  return {VERSION};
}

unsigned int NbgRotation::_currentSerializedVersion() const
{
  return VERSION;
}

bool NbgRotation::_hasValidFirstVersion() const
{
  return true;
}

void NbgRotation::_serialize(QDataStream &stream) const
{
  stream << quint32(_nDim) << quint32(_conventionId);
  stream << _angles.x() << _angles.y() << _angles.z();
  for (int i = 0; i < 9; ++i)
    stream << _matrix.getData()[i];
}

void NbgRotation::_unserialize(QDataStream &stream, unsigned int)
{
  quint32 nDim = 0, conventionId = 0;
  double values[12] = {};
  stream >> nDim >> conventionId;
  for (double &value : values)
    stream >> value;
  _checkStream(stream);

  if (nDim < 1 || nDim > 3)
    _refuse(QStringLiteral("bad number of dimensions"));
  const NbgARotationConvention *convention =
      conventionId <= quint32(std::numeric_limits<int>::max()) ? findConvention(int(conventionId))
                                                               : nullptr;
  if (!convention)
    _refuse(QStringLiteral("unknown rotation convention"));
  const NbgVector3D angles(values[0], values[1], values[2]);
  const NbgRotationMatrix matrix(values + 3);
  if (!angles.isDefined() || !matrix.isOrthonormal(MATRIX_TOLERANCE))
    _refuse(QStringLiteral("the matrix is not a rotation"));
  if (!matrix.isEqual(convention->toMatrix(angles), MATRIX_TOLERANCE))
    _refuse(QStringLiteral("angles and matrix disagree"));
  if (nDim < 3 && (angles.y() != 0. || angles.z() != 0.))
    _refuse(QStringLiteral("a rotation below three dimensions must be around Z"));

  _nDim = int(nDim);
  _conventionId = int(conventionId);
  _angles = angles;
  _matrix = matrix;
}

const NbgARotationConvention &NbgRotation::_convention() const
{
  return *findConvention(_conventionId);
}

void NbgRotation::_setAngles(const NbgVector3D &angles)
{
  _angles = angles;
  if (_nDim < 3)
    _angles.set(angles.x(), 0., 0.);
  _matrix = _convention().toMatrix(_angles);
}

void NbgRotation::_setDefaultAngle(int angle, double value)
{
  NbgVector3D angles = _convention().toDefaultAngles(_angles);
  angles[angle] = value;
  _setAngles(_convention().fromDefaultAngles(angles));
}

void NbgRotation::_setMatrix(const NbgRotationMatrix &matrix)
{
  _matrix = matrix;
  _angles = _convention().toAngles(matrix);
  if (_nDim < 3 && (_angles.y() != 0. || _angles.z() != 0.))
    _setAngles(_angles);
}

NbgRotation operator*(const NbgRotation &a, const NbgRotation &b)
{
  NbgRotation result(b);
  result.setRelativeTo(a);
  return result;
}

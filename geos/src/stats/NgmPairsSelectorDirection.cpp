#include "geos/stats/NgmPairsSelectorDirection.h"

#include "basic/error/NbeAssertion.h"
#include "geos/NgmEnumGlobal.h"

#include <QStringList>

#include <algorithm>

namespace {

constexpr double DEGREE = M_PI / 180.;

double square(double value)
{
  return value * value;
}

}  // namespace

NgmPairsSelectorDirection::~NgmPairsSelectorDirection() = default;

void NgmPairsSelectorDirection::setOmnidirectional()
{
  _isOmmidirectional = true;
  _isIrregular = false;
}

void NgmPairsSelectorDirection::setIrregular()
{
  _isOmmidirectional = false;
  _isIrregular = true;
}

void NgmPairsSelectorDirection::setOrientation(const NbgRotation &rotation)
{
  _rotation = rotation;
  _inverse = rotation.getMatrix().inverse();
}

void NgmPairsSelectorDirection::setAngularToleranceDegree(double angle)
{
  setIrregular();
  _tolAngleDegree = angle;
  _useTolAngle = angle < 90.;
  _cosTolAngle = std::cos(angle * DEGREE);
}

void NgmPairsSelectorDirection::setPlaneAngularToleranceDegree(double angle)
{
  _isIrregular = false;
  _tolPlaneAngleDegree = angle;
  _useTolPlaneAngle = angle < 90.;
  _cosTolPlaneAngle = std::cos(angle * DEGREE);
  _isOmmidirectional = _isOmmidirectional && !_useTolPlaneAngle;
}

void NgmPairsSelectorDirection::setHeightAngularToleranceDegree(double angle)
{
  _isIrregular = false;
  _tolHeightAngleDegree = angle;
  _useTolHeightAngle = angle < 90.;
  _cosTolHeightAngle = std::cos((90. - angle) * DEGREE);
  _isOmmidirectional = _isOmmidirectional && !_useTolHeightAngle;
}

void NgmPairsSelectorDirection::setSlicingWidth(bool use, double width)
{
  _useSlicingWidth = use;
  _slicingWidth = width;
  _isOmmidirectional = _isOmmidirectional && !use;
}

void NgmPairsSelectorDirection::setSlicingHeight(bool use, double height)
{
  _useSlicingHeight = use;
  _slicingHeight = height;
  _isOmmidirectional = _isOmmidirectional && !use;
}

void NgmPairsSelectorDirection::setSlicingRadius(bool use, double radius)
{
  _useSlicingRadius = use;
  _slicingRadius = radius;
  _squaredRadius = square(radius);
  _isOmmidirectional = false;
}

void NgmPairsSelectorDirection::setLag(int nLag, double lag, double tolLag, int nRefined,
                                       double lagShort)
{
  if (nLag < 1 || nLag > 1000)
    NBE_FAIL(QStringLiteral("Invalid number of lags"));
  if (!(lag > 0.))
    NBE_FAIL(QStringLiteral("Invalid lag"));
  if (nRefined < 0)
    NBE_FAIL(QStringLiteral("Invalid nRefined"));

  int n = std::min(nLag, nRefined);
  if (!(lagShort > 0.) || lagShort >= lag)
    n = 0;
  // As many as doubles hold: a tiny short lag must not overflow the count.
  const double lastShort = n > 0 ? std::trunc((n + tolLag - 1.) * lag / lagShort) : 0.;
  if (!(lastShort >= -1. && lastShort < 1e9))
    NBE_FAIL(QStringLiteral("Invalid number of short distance lags, check your short lag."));

  _nLagLong = nLag;
  _lagLong = lag;
  _tolLag = tolLag;
  _nLagShort = n > 0 ? int(lastShort) + 1 : 0;
  _lagShort = n > 0 ? lagShort : 0.;
  _distMinLong = n > 0 ? n * lag - lag * tolLag : 0.;
  _distMaxLong = (nLag - 1) * lag + lag * tolLag;
  _distMaxShort = n > 0 ? (lastShort + tolLag) * lagShort : 0.;
  _nLagLongHidden = n;
}

double NgmPairsSelectorDirection::getIntervalCenter(int i) const
{
  if (i < 0 || i >= getNIntervals())
    NBE_FAIL(QStringLiteral("NgmPairsSelectorDirection::getIntervalCenter: invalid interval rank"));
  if (i < _nLagShort)
    return i * _lagShort;
  return (_nLagLongHidden - _nLagShort + i) * _lagLong;
}

QString NgmPairsSelectorDirection::getDirectionName() const
{
  if (!_directionName.isEmpty())
    return _directionName;
  if (_isOmmidirectional)
    return NgmEDirectionGroupName::OMNIDIRECTIONAL.getLabel();
  return _rotation.getUDirectionName();
}

int NgmPairsSelectorDirection::proposePairs(int n, const double *hx, const double *hy,
                                            const double *hz, int *positions) const
{
  int count = 0;
  const bool isCone = _isIrregular && _useTolAngle;
  const bool isPlane = !_isIrregular && _useTolPlaneAngle;
  if (_isOmmidirectional || (!isCone && !isPlane)) {
    for (int i = 0; i < n; ++i)
      positions[i] = i;
    return n;
  }

  // The angle by squares. The margin is above the roundings of both forms of the test.
  const double limit = square(isCone ? _cosTolAngle : _cosTolPlaneAngle) * (1. - 1e-12);
  const double axial = isCone ? 1. : 0.;
  const double *m = _inverse.getData();
  for (int i = 0; i < n; ++i) {
    const double ux = m[0] * hx[i] + m[3] * hy[i] + m[6] * hz[i];
    const double uy = m[1] * hx[i] + m[4] * hy[i] + m[7] * hz[i];
    const double uz = axial * (m[2] * hx[i] + m[5] * hy[i] + m[8] * hz[i]);
    const double x2 = ux * ux;
    positions[count] = i;
    count += !(x2 < limit * (x2 + uy * uy + uz * uz));
  }
  return count;
}

void NgmPairsSelectorDirection::normalizeDirection(double s)
{
  for (double *length : {&_lagLong, &_tolLag, &_lagShort, &_slicingWidth, &_slicingHeight,
                         &_slicingRadius, &_distMinLong, &_distMaxLong, &_distMaxShort})
    *length /= s;
  _squaredRadius = square(_slicingRadius);
}

QString NgmPairsSelectorDirection::debug(int level) const
{
  QString text = QStringLiteral("Direction Rotation:\n") + _rotation.debug(level);
  const auto add = [&text](const char *name, const QString &value) {
    text += QStringLiteral("%1 = %2\n").arg(QLatin1String(name), value);
  };
  const auto addNumber = [&add](const char *name, double value) {
    add(name, QString::number(value, 'g', 15));
  };
  addNumber("_isOmmidirectional", _isOmmidirectional);
  addNumber("_isIrregular", _isIrregular);
  addNumber("_nLagLong", _nLagLong);
  addNumber("_lagLong", _lagLong);
  addNumber("_tolLag", _tolLag);
  addNumber("_nLagShort", _nLagShort);
  addNumber("_lagShort", _lagShort);
  addNumber("_useSlicingWidth", _useSlicingWidth);
  addNumber("_slicingWidth", _slicingWidth);
  addNumber("_useSlicingHeight", _useSlicingHeight);
  addNumber("_slicingHeight", _slicingHeight);
  addNumber("_useSlicingRadius", _useSlicingRadius);
  addNumber("_slicingRadius", _slicingRadius);
  addNumber("_useTolAngle", _useTolAngle);
  addNumber("_tolAngleDegree", _tolAngleDegree);
  addNumber("_useTolPlaneAngle", _useTolPlaneAngle);
  addNumber("_tolPlaneAngleDegree", _tolPlaneAngleDegree);
  addNumber("_useTolHeightAngle", _useTolHeightAngle);
  addNumber("_tolHeightAngleDegree", _tolHeightAngleDegree);
  addNumber("_useCode", _useCode);
  addNumber("_distMinLong", _distMinLong);
  addNumber("_distMaxLong", _distMaxLong);
  addNumber("_distMaxShort", _distMaxShort);
  addNumber("_nLagLongHidden", _nLagLongHidden);
  addNumber("_cosTolAngle", _cosTolAngle);
  addNumber("_cosTolPlaneAngle", _cosTolPlaneAngle);
  addNumber("_cosTolHeightAngle", _cosTolHeightAngle);
  addNumber("_groupId", _groupId);
  add("_directionName", _directionName);
  return text;
}

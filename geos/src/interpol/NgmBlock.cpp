#include "geos/interpol/NgmBlock.h"

#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeUserError.h"

#include <QObject>

#include <cmath>

namespace {

/// Points that a block may be discretized into: 24 bytes each, below the limit of Qt's vectors.
constexpr double MAXIMUM_POINTS = 5e7;

}  // namespace

NbgIntVector3D NgmBlock::getDiscretizationPointsNumber() const
{
  QString why;
  if (!isDiscretizationDefined(why) || (_hasStepsSize() && !isSizeDefined(why)))
    NBE_FAIL(why);
  NbgIntVector3D numbers(1, 1, 1);
  double total = 1.;
  for (int axis = 0; axis < _nAxes(); ++axis) {
    const double number =
        _hasStepsSize() ? std::ceil(_size[axis] / _stepsSize[axis]) : _pointsNumber[axis];
    total *= number;
    if (!(total <= MAXIMUM_POINTS))
      throw NbeUserError(QObject::tr("A block is discretized into more than %1 points: enlarge the "
                                     "steps or reduce the numbers of points.")
                             .arg(MAXIMUM_POINTS));
    numbers[axis] = int(number);
  }
  return numbers;
}

NbgVector3D NgmBlock::getDiscretizationStepsSize() const
{
  QString why;
  if (!isDiscretizationDefined(why) || (_hasPointsNumber() && !isSizeDefined(why)))
    NBE_FAIL(why);
  if (_hasStepsSize())
    return _stepsSize;
  const NbgIntVector3D numbers = getDiscretizationPointsNumber();
  return {_size.x() / numbers.x(), _size.y() / numbers.y(), _size.z() / numbers.z()};
}

NbgVector3D NgmBlock::getSize() const
{
  QString why;
  if (!isSizeDefined(why))
    NBE_FAIL(why);
  return _size;
}

bool NgmBlock::isSizeDefined(QString &why) const
{
  return _isSizeDefined(why);
}

int NgmBlock::getDiscretizationPoints(QVector<NbgVector3D> &points) const
{
  _check(true);
  const NbgIntVector3D numbers = getDiscretizationPointsNumber();
  const NbgVector3D steps = getDiscretizationStepsSize();
  const NbgVector3D u = _rotation.localToWorld({steps.x(), 0., 0.});
  const NbgVector3D v = _rotation.localToWorld({0., steps.y(), 0.});
  const NbgVector3D w = _rotation.localToWorld({0., 0., steps.z()});
  NbgVector3D first = 0.5 * steps - 0.5 * _size;
  if (!is3D())
    first.setZ(0.);
  const NbgVector3D origin = _rotation.localToWorld(first);

  const int count = int(numbers.product());
  points.resize(count);
  NbgVector3D *point = points.data();
  for (int i = 0; i < numbers.x(); ++i)
    for (int j = 0; j < numbers.y(); ++j)
      for (int k = 0; k < numbers.z(); ++k)
        *point++ = origin + double(i) * u + double(j) * v + double(k) * w;
  return count;
}

bool NgmBlock::isValid() const
{
  return _check(false);
}

bool NgmBlock::_check(bool raise) const
{
  QString why;
  const bool valid = isBlockDefined(why) && isDiscretizationDefined(why);
  if (!valid && raise)
    NBE_FAIL(why);
  return valid;
}

#include "geos/vmodel/NgmTapering.h"

#include "basic/error/NbeProgrammingError.h"

#include <algorithm>

namespace {

double power4(double x)
{
  return (x * x) * (x * x);
}

double spherical(double x)
{
  return (1. - x) * (1. - x) * (1. + 0.5 * x);
}

double wendland1(double x)
{
  return power4(1. - x) * (1. + 4. * x);
}

double wendland2(double x)
{
  return power4(1. - x) * (1. - x) * (1. - x) * (1. + x * (6. + x * (35. / 3.)));
}

double wu1(double x)
{
  return power4(1. - x) * (1. + x * (4. + x * (3. + x * 0.75)));
}

double wu2(double x)
{
  return power4(1. - x) * (1. - x) * (1. - x) *
         (1. + x * (6. + x * (41. / 3. + x * (12. + x * (5. + x * (5. / 6.))))));
}

}  // namespace

void NgmTapering::setType(TaperingType type)
{
  const Function functions[] = {spherical, wendland1, wendland2, wu1, wu2};
  if (type >= SPHERICAL && type <= WU_2)
    _function = functions[type];
}

void NgmTapering::setRanges(const NbgVector3D &ranges)
{
  // NaN is refused too.
  const auto isInvalid = [&](int axis) { return !(ranges[axis] > 1e-30); };
  if (isInvalid(0))
    throw NbeProgrammingError(
        QStringLiteral("NgmAVStruct::setRanges: Invalid range for X Component"));
  if (_nDimensions > 1 && isInvalid(1))
    throw NbeProgrammingError(
        QStringLiteral("NgmAVStruct::setRanges: Invalid range for Y Component"));
  if (_nDimensions > 2 && isInvalid(2))
    throw NbeProgrammingError(
        QStringLiteral("NgmAVStruct::setRanges: Invalid range for Z Component"));

  const int nActive = std::max(1, std::min(_nDimensions, 3));
  _minimumRange = *std::min_element(ranges.getData(), ranges.getData() + nActive);
  _anisotropy = NbgVector3D::Unit;
  for (int axis = 0; axis < nActive; ++axis)
    _anisotropy[axis] = _minimumRange / ranges[axis];
}

double NgmTapering::calcTapering(const NbgVector3D &h) const
{
  if (!_function)
    throw NbeProgrammingError(QStringLiteral("NgmTapering::calcTapering: no taper function"));
  const double x = h.componentsProduct(_anisotropy).norm() / _minimumRange;
  return x > 1. ? 0. : _function(x);
}

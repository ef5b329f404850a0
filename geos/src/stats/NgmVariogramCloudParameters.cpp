#include "geos/stats/NgmVariogramCloudParameters.h"

#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeAssertion.h"

void NgmVariogramCloudParameters::setImageSize(int nx, int ny)
{
  if (nx < 1 || ny < 1)
    NBE_FAIL(QStringLiteral("invalid size"));
  _nx = nx;
  _ny = ny;
}

double NgmVariogramCloudParameters::getMin(int axis) const
{
  return _ranges.value(axis, {NbbGlobal::D_FFFF, NbbGlobal::D_FFFF}).first;
}

double NgmVariogramCloudParameters::getMax(int axis) const
{
  return _ranges.value(axis, {NbbGlobal::D_FFFF, NbbGlobal::D_FFFF}).second;
}

void NgmVariogramCloudParameters::setRange(int axis, double min, double max)
{
  if (!(min < max))
    NBE_FAIL(QStringLiteral("invalid range"));
  _ranges[axis] = {min, max};
}

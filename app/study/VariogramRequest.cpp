#include "app/study/VariogramRequest.h"

#include "app/study/Compass.h"
#include "app/study/Samples.h"
#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeUserError.h"
#include "geos/stats/NgmVariogramDirection.h"
#include "geos/stats/NgmVariogramExp.h"

#include <QObject>

#include <algorithm>
#include <cmath>

namespace orvenal {

namespace {

struct Lags
{
  double lag;
  int count;
};

Lags lagsOf(const VariogramRequest &request, const Samples &samples)
{
  const double diagonal = samples.getDiagonal();
  if (!request.lag && diagonal == 0.)
    throw NbeUserError(QObject::tr("all samples lie at one place; they have no variogram"));
  const NgmVariogramDirection usual(diagonal);
  const double lag = request.lag.value_or(usual.getLag());
  const int usualCount = int(std::clamp(usual.getDistanceMax() / lag, 1., 100.));
  return {lag, request.lags.value_or(usualCount)};
}

void addDirection(const VariogramRequest::Direction &direction, int rank, bool is3D,
                  const VariogramRequest &request, const Lags &lags, NgmVariogramExp &result)
{
  const NbgRotation rotation = Compass::frame(direction.azimuth, direction.dip, 0.);
  const QString name = direction.name.isEmpty()
                           ? Compass::describe(rotation.getAxisX(), is3D ? 3 : 2)
                           : direction.name;
  result.addOneFreeDirection(NbgRotation(), rank, rotation, name, lags.count, lags.lag,
                             request.lagTolerance, direction.tolerance,
                             request.width.value_or(NbbGlobal::D_FFFF), 0, 0.);
}

/// Regular directions of the horizontal plane, the first one and then clockwise.
QList<VariogramRequest::Direction> regularDirections(const VariogramRequest &request)
{
  QList<VariogramRequest::Direction> directions;
  const double step = 180. / request.nRegular;
  for (int i = 0; i < request.nRegular; ++i) {
    VariogramRequest::Direction direction;
    direction.azimuth = std::fmod(request.firstAzimuth + i * step, 360.);
    direction.tolerance = request.regularTolerance.value_or(step / 2.);
    directions << direction;
  }
  return directions;
}

}  // namespace

NgmVariogramExp makeVariogramExp(const VariogramRequest &request, const Samples &samples)
{
  const bool is3D = !samples.z.empty();
  const Lags lags = lagsOf(request, samples);
  NgmVariogramExp result(is3D);
  result.setNVariables(1);
  const QList<VariogramRequest::Direction> directions =
      request.nRegular > 0 ? regularDirections(request) : request.directions;
  for (int i = 0; i < directions.size(); ++i)
    addDirection(directions[i], i, is3D, request, lags, result);
  if (directions.isEmpty())
    result.addOmnidirectional(lags.count, lags.lag, request.lagTolerance, 0, 0.);
  result.addVarioCalculation(request.curve.toEnum());
  return result;
}

}  // namespace orvenal

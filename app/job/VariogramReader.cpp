#include "app/job/VariogramReader.h"

#include "app/job/JobObject.h"
#include "app/study/Compass.h"

#include <QObject>

namespace orvenal {

namespace {

constexpr int mostLags = 10000;
constexpr int mostDirections = 180;

/// Curves that say something of two variables only.
bool comparesVariables(const NgmEVarioExp &curve)
{
  return curve == NgmEVarioExp::VARIOGRAM_CROSS_OVER_SIMPLE ||
         curve == NgmEVarioExp::VARIOGRAM_CROSS_OVER_SQRT_SIMPLE;
}

NgmEVarioExp readCurve(const JobObject &object)
{
  return NgmEVarioExp::fromLabel(
      object.choice(key("curve"), curveLabels(), NgmEVarioExp::VARIOGRAM.getLabel()));
}

void readLags(const JobObject &object, VariogramRequest &request)
{
  if (object.has(key("lag")))
    request.lag = object.number(key("lag"), 0., JobObject::EXCLUDED);
  if (object.has(key("lags")))
    request.lags = object.integer(key("lags"), 1, mostLags);
  if (object.has(key("tolerance")))
    request.lagTolerance = object.number(key("tolerance"), 0., JobObject::EXCLUDED);
}

/// An angle in degrees above 0, 90 at most.
double readAngularTolerance(const JobObject &object)
{
  const double tolerance = object.number(key("angularTolerance"), 0., JobObject::EXCLUDED);
  if (tolerance > 90.)
    object.fail(key("angularTolerance"), QObject::tr("%1 is more than 90").arg(tolerance));
  return tolerance;
}

void refuseWithout(bool isThere, const JobObject &object, const char *name, const char *other)
{
  if (!isThere && object.has(key(name)))
    object.fail(key(name), QObject::tr("has no meaning without \"%1\"").arg(QLatin1String(other)));
}

void readRegular(const JobObject &object, VariogramRequest &request)
{
  const bool isRegular = object.has(key("regular"));
  refuseWithout(isRegular, object, "azimuth", "regular");
  refuseWithout(isRegular, object, "angularTolerance", "regular");
  if (!isRegular)
    return;
  request.nRegular = object.integer(key("regular"), 1, mostDirections);
  const double first = object.has(key("azimuth")) ? object.number(key("azimuth")) : 0.;
  request.firstAzimuth = Compass::toAzimuth(first, object.getConventions().angles);
  if (object.has(key("angularTolerance")))
    request.regularTolerance = readAngularTolerance(object);
}

void readDirections(const JobObject &object, int nDimensions, VariogramRequest &request)
{
  if (!object.has(key("directions")))
    return;
  if (request.nRegular > 0)
    object.fail(key("directions"), QObject::tr("give either \"regular\" or \"directions\""));
  const QList<JobObject> directions = object.objects(
      key("directions"), {key("name"), key("azimuth"), key("dip"), key("angularTolerance")});
  if (directions.isEmpty() || directions.size() > mostDirections)
    object.fail(key("directions"), QObject::tr("expected 1 to %1 directions, found %2")
                                       .arg(mostDirections)
                                       .arg(directions.size()));
  for (const JobObject &direction : directions) {
    VariogramRequest::Direction result;
    result.name = direction.text(key("name"), QString());
    result.azimuth =
        Compass::toAzimuth(direction.number(key("azimuth")), object.getConventions().angles);
    if (direction.has(key("dip")) && nDimensions < 3)
      direction.fail(key("dip"), QObject::tr("the samples have two dimensions"));
    if (direction.has(key("dip")))
      result.dip = direction.number(key("dip"));
    if (direction.has(key("angularTolerance")))
      result.tolerance = readAngularTolerance(direction);
    request.directions << result;
  }
}

}  // namespace

QStringList variogramKeys()
{
  return {key("curve"),
          key("lag"),
          key("lags"),
          key("tolerance"),
          key("regular"),
          key("azimuth"),
          key("angularTolerance"),
          key("directions"),
          key("width")};
}

QStringList curveLabels()
{
  QStringList labels;
  for (auto curves = NgmEVarioExp::createIterator(); curves.hasNext();) {
    const NgmEVarioExp &curve = curves.next();
    if (!comparesVariables(curve))
      labels << curve.getLabel();
  }
  return labels;
}

VariogramRequest readVariogram(const JobObject &object, int nDimensions)
{
  VariogramRequest request;
  request.curve = readCurve(object);
  readLags(object, request);
  readRegular(object, request);
  readDirections(object, nDimensions, request);
  refuseWithout(request.nRegular > 0 || !request.directions.isEmpty(), object, "width",
                "regular\" or \"directions");
  if (object.has(key("width")))
    request.width = object.number(key("width"), 0., JobObject::EXCLUDED);
  return request;
}

}  // namespace orvenal

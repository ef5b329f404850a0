#include "app/job/NeighborhoodReader.h"

#include "app/job/AxesReader.h"
#include "app/job/JobObject.h"
#include "geos/NgcEnumGlobal.h"

#include <QObject>

namespace orvenal {

namespace {

constexpr int mostSamples = 10000;
constexpr int mostSectors = 360;

void refuseKeysOfMoving(const JobObject &object)
{
  for (const QString &key : neighborhoodKeys()) {
    if (key != QLatin1String("type") && object.has(key))
      object.fail(key, QObject::tr("has no meaning in a unique neighborhood, where every node uses "
                                   "all samples"));
  }
}

int readInteger(const JobObject &object, const QString &key, int fallback, int minimum, int maximum)
{
  return object.has(key) ? object.integer(key, minimum, maximum) : fallback;
}

/// `maximum` samples in all; each sector takes its share of them, rounded up, unless the job says
/// how many.
void readNumbers(const JobObject &object, NgmNeighborhoodMoving &moving)
{
  const int maximum = object.integer(key("maximum"), 1, mostSamples);
  const int sectors = readInteger(object, key("sectors"), 1, 1, mostSectors);
  const bool split = object.flag(key("split"), false);
  const int parts = split ? 2 * sectors : sectors;
  const int perSector =
      readInteger(object, key("perSector"), (maximum + parts - 1) / parts, 1, mostSamples);
  moving.setSectors(sectors, perSector, split);
  moving.setRuleMaximumNumber(true, maximum);
  const int minimum = readInteger(object, key("minimum"), 1, 1, mostSamples);
  if (minimum > maximum)
    object.fail(key("minimum"),
                QObject::tr("%1 is more than the maximum, %2").arg(minimum).arg(maximum));
  moving.setRuleMinimumNumber(true, minimum);
}

void readShape(const JobObject &object, int nDimensions, NgmNeighborhoodMoving &moving)
{
  const NbgVector3D radii = readLengths(object, key("radius"), key("radii"), nDimensions);
  moving.setEllipseSize(radii);
  const QString ellipsoid = key("ellipsoid");
  const QString box = key("box");
  const bool isBox = object.choice(key("shape"), {ellipsoid, box}, ellipsoid) == box;
  moving.setIsRectangular(isBox);
  const bool isRoundInPlane = radii.x() == radii.y();
  const bool hasAxes = isBox || moving.getSectorsNumber() > 1;
  moving.setEllipseRotation(isRoundInPlane && hasAxes
                                ? readTurn(object, nDimensions)
                                : readFrame(object, nDimensions, !isRoundInPlane));
  const QString euclidean = key("euclidean");
  moving.setRuleAnisotropicDistances(
      object.choice(key("distances"), {euclidean, ellipsoid}, euclidean) == ellipsoid);
}

/// Rules that leave samples out, or a node undefined.
void readRules(const JobObject &object, int nVariables, NgmNeighborhoodMoving &moving)
{
  if (object.has(key("gap")))
    moving.setRuleMinimumGap(true, object.number(key("gap"), 0., JobObject::EXCLUDED));
  if (object.has(key("nearest")))
    moving.setRuleMaximumDistanceWithoutSample(
        true, object.number(key("nearest"), 0., JobObject::EXCLUDED));
  for (const bool areConsecutive : {false, true}) {
    const QString name = areConsecutive ? key("emptySectorsInARow") : key("emptySectors");
    if (!object.has(name))
      continue;
    if (moving.isRuleMaximumEmptySectors())
      object.fail(name, QObject::tr("give \"emptySectors\" or \"emptySectorsInARow\", not both"));
    moving.setRuleMaximumEmptySectors(true, object.integer(name, 0, 2 * mostSectors),
                                      areConsecutive);
  }
  const QStringList choices = {key("any"), key("each"), key("all")};
  if (nVariables == 1 && object.has(key("variables")))
    object.fail(key("variables"), QObject::tr("the job has no \"covariates\""));
  const QString variables = object.choice(key("variables"), choices, choices.first());
  moving.setRuleHeterotopicSearch(variables == choices[1]);
  moving.setRuleIsotopicSearch(variables == choices[2]);
}

QString readLines(const JobObject &object, NgmNeighborhoodMoving &moving)
{
  if (!object.has(key("lines")))
    return QString();
  const JobObject lines = object.object(
      key("lines"),
      {key("column"), key("perLine"), key("firstPerLine"), key("minimum"), key("maximum")});
  const auto has = [&](const char *name) { return lines.has(key(name)); };
  const auto number = [&](const char *name) {
    return readInteger(lines, key(name), 1, 1, mostSamples);
  };
  moving.setRuleMaximumPerCode(has("perLine"), number("perLine"));
  moving.setRuleOptimumPerCode(has("firstPerLine"), number("firstPerLine"));
  moving.setRuleMinimumCodeNumber(has("minimum"), number("minimum"));
  moving.setRuleMaximumCodeNumber(has("maximum"), number("maximum"));
  if (!moving.isRulePerCode())
    lines.fail(QObject::tr("give \"perLine\", \"firstPerLine\", \"minimum\" or \"maximum\""));
  return lines.text(key("column"));
}

/// What becomes of values beyond a threshold.
struct Cap
{
  NgcECutoffMode mode = NgcECutoffMode::CUTOFF_REPLACE;
  double threshold = 0.;
  NbgVector3D distance;
};

Cap readCap(const JobObject &object, const QString &threshold, int nDimensions)
{
  const QStringList treatments = {key("cap"), key("remove"), key("ignore")};
  const NgcECutoffMode modes[] = {NgcECutoffMode::CUTOFF_REPLACE, NgcECutoffMode::CUTOFF_REMOVE,
                                  NgcECutoffMode::CUTOFF_IGNORE};
  Cap cap;
  cap.threshold = object.number(threshold);
  cap.mode =
      modes[treatments.indexOf(object.choice(key("treatment"), treatments, treatments.first()))];
  if (object.has(key("beyond")) || object.has(key("beyondRadii")))
    cap.distance = readLengths(object, key("beyond"), key("beyondRadii"), nDimensions);
  return cap;
}

void readCaps(const JobObject &object, int nDimensions, NgmNeighborhoodMoving &moving)
{
  const auto keysOf = [](const QString &threshold) {
    return QStringList{threshold, key("treatment"), key("beyond"), key("beyondRadii")};
  };
  if (object.has(key("highValues"))) {
    const QString above = key("above");
    const Cap cap = readCap(object.object(key("highValues"), keysOf(above)), above, nDimensions);
    moving.setRuleCutLarge(true, cap.mode, cap.threshold, cap.distance);
  }
  if (object.has(key("lowValues"))) {
    const QString below = key("below");
    const Cap cap = readCap(object.object(key("lowValues"), keysOf(below)), below, nDimensions);
    moving.setRuleCutSmall(true, cap.mode, cap.threshold, cap.distance);
  }
}

/// Factors of a job are those of the first search, those of the library of the one before.
QList<NgmNeighborhoodNestedParam> readPasses(const JobObject &object,
                                             const NgmNeighborhoodMoving &moving)
{
  QList<NgmNeighborhoodNestedParam> passes;
  if (!object.has(key("passes")))
    return passes;
  double last = 1.;
  for (const JobObject &pass :
       object.objects(key("passes"), {key("factor"), key("minimum"), key("perSector")})) {
    NgmNeighborhoodNestedParam param;
    const double factor = pass.has(key("factor")) ? pass.number(key("factor"), last) : last;
    param.factor = NbgVector3D(factor / last, factor / last, factor / last);
    last = factor;
    const int maximum = moving.getMaximumNumber();
    param.minimum = readInteger(pass, key("minimum"), -1, 1, maximum);
    param.maximumPerSector = readInteger(pass, key("perSector"), -1, 1, mostSamples);
    passes << param;
  }
  return passes;
}

}  // namespace

QStringList neighborhoodKeys()
{
  return QStringList{key("type"),         key("radius"),    key("radii"),
                     key("shape"),        key("distances"), key("maximum"),
                     key("minimum"),      key("sectors"),   key("split"),
                     key("perSector"),    key("gap"),       key("nearest"),
                     key("emptySectors"), key("lines"),     key("emptySectorsInARow"),
                     key("highValues"),   key("lowValues"), key("variables"),
                     key("passes")} +
         angleKeys();
}

std::optional<NeighborhoodRequest> readNeighborhood(const JobObject &object, int nDimensions,
                                                    int nVariables)
{
  const QString moving = key("moving");
  const QString unique = key("unique");
  object.text(key("type"));
  if (object.choice(key("type"), {moving, unique}, moving) == unique) {
    refuseKeysOfMoving(object);
    return std::nullopt;
  }
  NeighborhoodRequest request;
  readNumbers(object, request.moving);
  readShape(object, nDimensions, request.moving);
  readRules(object, nVariables, request.moving);
  request.line = readLines(object, request.moving);
  readCaps(object, nDimensions, request.moving);
  QStringList errors;
  QStringList warnings;
  if (!request.moving.checkParameters(nDimensions, errors, warnings))
    object.fail(errors.first().mid(2).trimmed());
  request.passes = readPasses(object, request.moving);
  return request;
}

}  // namespace orvenal

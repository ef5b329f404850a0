#include "app/report/Describe.h"

#include "app/base/NumberText.h"
#include "app/console/TextTable.h"
#include "app/report/StudyResult.h"
#include "app/study/Compass.h"
#include "basic/base/NbbGlobal.h"
#include "geos/matrix/NgmMatrix.h"
#include "geos/vmodel/NgmAVStruct.h"

#include <QObject>

#include <algorithm>
#include <cmath>

namespace orvenal {

namespace {

QString labelled(const QString &name, const QString &unit)
{
  return unit.isEmpty() ? name : QStringLiteral("%1 [%2]").arg(name, unit);
}

QString times(const QStringList &factors)
{
  return factors.join(QStringLiteral(" ") + QChar(0xD7) + ' ');
}

void addEllipsoid(const NgmNeighborhoodMoving &moving, const Job &job,
                  QVector<QPair<QString, QString>> &rows)
{
  const NbgVector3D radii = moving.getEllipseSize();
  const int n = job.getNDimensions();
  const bool isRound = radii.x() == radii.y() && (n < 3 || radii.x() == radii.z());
  if (isRound) {
    rows.append({QObject::tr("Search radius"), lengthText(radii.x(), job.lengthUnit)});
    return;
  }
  const NbgRotation &rotation = moving.getEllipseRotation();
  const NbgVector3D axes[] = {rotation.getAxisX(), rotation.getAxisY(), rotation.getAxisZ()};
  const char *const names[] = {"U", "V", "W"};
  for (int axis = 0; axis < n; ++axis)
    rows.append({QObject::tr("Search radius along %1").arg(QLatin1String(names[axis])),
                 QObject::tr("%1, %2").arg(lengthText(radii[axis], job.lengthUnit),
                                           Compass::describe(axes[axis], n))});
  for (int axis = 0; axis < 3; ++axis)
    rows.append({QObject::tr("%1 (east, north, up)").arg(QLatin1String(names[axis])),
                 Describe::vector(axes[axis])});
}

/// A label that leaves room for numbers on a terminal.
QString shortLabel(const QString &label)
{
  constexpr int widest = 50;
  return shortened(label, widest);
}

QString capText(const NgcECutoffMode &mode, double threshold, const NbgVector3D &radii,
                const Job &job)
{
  const QString what = mode == NgcECutoffMode::CUTOFF_REPLACE  ? QObject::tr("capped to %1")
                       : mode == NgcECutoffMode::CUTOFF_REMOVE ? QObject::tr("left out beyond %1")
                                                               : QObject::tr("ignored beyond %1");
  const QString text = what.arg(numberText(threshold));
  if (radii == NbgVector3D())
    return text;
  QStringList lengths;
  for (int axis = 0; axis < job.getNDimensions(); ++axis)
    lengths << lengthText(radii[axis], job.lengthUnit);
  lengths.removeDuplicates();
  return text + QObject::tr(", farther than %1 from the node").arg(times(lengths));
}

void addLineRules(const NeighborhoodRequest &request, QVector<QPair<QString, QString>> &rows)
{
  const NgmNeighborhoodMoving &moving = request.moving;
  const auto add = [&rows](bool isOn, const QString &name, int value) {
    if (isOn)
      rows.append({name, QString::number(value)});
  };
  if (!request.line.isEmpty())
    rows.append({QObject::tr("Lines"), QObject::tr("column \"%1\"").arg(request.line)});
  add(moving.isRuleMaximumPerCode(), QObject::tr("Samples of a line, at most"),
      moving.getMaximumPerCode());
  add(moving.isRuleOptimumPerCode(), QObject::tr("Samples of a line, before others give more"),
      moving.getOptimumPerCode());
  add(moving.isRuleMinimumCodeNb(), QObject::tr("Lines, at least"), moving.getMinimumCodeNb());
  add(moving.isRuleMaximumCodeNb(), QObject::tr("Lines, at most"), moving.getMaximumCodeNb());
}

void addRules(const Job &job, QVector<QPair<QString, QString>> &rows)
{
  const NgmNeighborhoodMoving &moving = job.neighborhood->moving;
  if (moving.isRectangular())
    rows.append({QObject::tr("Shape"), QObject::tr("the box around the ellipsoid")});
  if (moving.isRuleAnisotropicDistances())
    rows.append(
        {QObject::tr("Nearest samples"), QObject::tr("by distances in units of the radii")});
  if (moving.isRuleMinimumGap())
    rows.append({QObject::tr("Distance between samples, at least"),
                 lengthText(moving.getMinimumGap(), job.lengthUnit)});
  if (moving.isRuleMaximumDistanceWithoutAnySample())
    rows.append({QObject::tr("Distance of the nearest sample, at most"),
                 lengthText(moving.getMaximumDistanceWithoutAnySample(), job.lengthUnit)});
  if (moving.isRuleMaximumEmptySectors())
    rows.append({moving.isRuleMaximumEmptySectorsConsecutive()
                     ? QObject::tr("Empty sectors in a row, at most")
                     : QObject::tr("Empty sectors, at most"),
                 QString::number(moving.getMaximumEmptySectors())});
  addLineRules(*job.neighborhood, rows);
  if (moving.isRuleCutLarge())
    rows.append({QObject::tr("High values"),
                 capText(moving.getCutLargeMode(), moving.getCutLargeThreshold(),
                         moving.getCutLargeDistance(), job)});
  if (moving.isRuleCutSmall())
    rows.append(
        {QObject::tr("Low values"), capText(moving.getCutSmallMode(), moving.getCutSmallThreshold(),
                                            moving.getCutSmallDistance(), job)});
  if (moving.isRuleHeterotopicSearch() || moving.isRuleIsotopicSearch())
    rows.append({QObject::tr("Variables"), moving.isRuleIsotopicSearch()
                                               ? QObject::tr("samples that have all of them")
                                               : QObject::tr("each of them in every sector")});
}

void addPasses(const Job &job, QVector<QPair<QString, QString>> &rows)
{
  double factor = 1.;
  int number = 2;
  for (const NgmNeighborhoodNestedParam &pass : job.neighborhood->passes) {
    factor *= pass.factor.x();
    QStringList parts = {QObject::tr("radii times %1").arg(numberText(factor))};
    if (pass.minimum >= 0)
      parts << QObject::tr("at least %1 samples").arg(pass.minimum);
    if (pass.maximumPerSector >= 0)
      parts << QObject::tr("at most %1 in each sector").arg(pass.maximumPerSector);
    rows.append({QObject::tr("Pass %1").arg(number++), parts.join(QStringLiteral(", "))});
  }
}

/// "Spherical of sill 0.59"; see sillRows() for the sills of several variables.
QString structureWithSill(const NgmVModel &model, int index)
{
  const QString label = model.getStructureLabel(index);
  if (model.getNVariables() > 1)
    return label;
  const QString sill = numberText(model.getCoregionalisationMatrix(index)(0, 0));
  return model.getStructure(index).getIRFDegree() < 0
             ? QObject::tr("%1 of sill %2").arg(label, sill)
             : QObject::tr("%1 of value %2 at its range").arg(label, sill);
}

QString setName(const VariogramSet &set, const Job &job)
{
  const QString first = job.getVariable(set.first).name;
  return set.isCross()
             ? QStringLiteral("%1 %2 %3").arg(job.getVariable(set.second).name, QChar(0xD7), first)
             : first;
}

void addSillRows(const QString &structure, const NgmMatrix &sills, const Job &job,
                 QList<QStringList> &rows)
{
  for (int i = 0; i < sills.getNRows(); ++i) {
    QStringList row = {i == 0 ? structure : QString(), job.getVariable(i).name};
    for (int j = 0; j < sills.getNColumns(); ++j)
      row << numberText(sills(i, j));
    rows << row;
  }
}

QString columnNames(const QList<Column> &columns)
{
  QStringList names;
  for (const Column &column : columns)
    names << column.getName();
  return names.join(QStringLiteral(", "));
}

/// "linear drift and external drift (sqrt dist)"
QString kindOfDrift(const KrigingRequest &request)
{
  QStringList drifts;
  if (request.driftDegree > 0)
    drifts << (request.driftDegree == 1 ? QObject::tr("linear drift")
                                        : QObject::tr("quadratic drift"));
  if (!request.externalDrifts.isEmpty())
    drifts << QObject::tr("external drift (%1)").arg(columnNames(request.externalDrifts));
  return drifts.join(QObject::tr(" and "));
}

/// Of what the estimates are.
QString supportOf(const KrigingRequest &request)
{
  if (!request.block)
    return QObject::tr("points: values at the nodes");
  QStringList points;
  for (int axis = 0; axis < 3; ++axis) {
    if (axis < 2 || (*request.block)[axis] > 1)
      points << QString::number((*request.block)[axis]);
  }
  return QObject::tr("blocks: means of the cells, each discretized by %1 points")
      .arg(times(points));
}

QString filteredParts(const KrigingRequest &request)
{
  QStringList parts;
  if (request.filterNugget)
    parts << QObject::tr("nugget");
  for (const int structure : request.filteredStructures)
    parts << QObject::tr("structure %1").arg(structure + 1);
  if (request.filterDrift)
    parts << QObject::tr("drift");
  return parts.join(QStringLiteral(", "));
}

/// "Ordinary block cokriging with zinc and lead"
QString krigingKind(const Job &job)
{
  const KrigingRequest &request = job.kriging;
  static const char *const modes[] = {"Ordinary", "Simple", "Universal", "Rescaled"};
  QStringList words;
  if (request.mode != KrigingRequest::DRIFT || request.driftDegree > 0)
    words << QObject::tr(modes[request.mode]);
  if (request.block)
    words << QObject::tr("block");
  if (!request.collocated.isEmpty())
    words << QObject::tr("collocated");
  words << (job.covariates.isEmpty() ? QObject::tr("kriging") : QObject::tr("cokriging"));
  QStringList names;
  for (const JobVariable &covariate : job.covariates)
    names << covariate.name;
  if (!names.isEmpty())
    words << QObject::tr("with %1").arg(names.join(QStringLiteral(", ")));
  QString text = words.join(' ');
  text[0] = text[0].toUpper();
  if (request.mode == KrigingRequest::DRIFT)
    text += QObject::tr(" with %1").arg(kindOfDrift(request));
  if (request.measurementError || request.constantError)
    text += QObject::tr(", measurement errors");
  if (request.isFiltering())
    text += QObject::tr(", filtered");
  return text;
}

}  // namespace

QString Describe::vector(const NbgVector3D &direction)
{
  const auto component = [](double value) {
    return QString::number(std::abs(value) < 5e-7 ? 0. : value, 'f', 6);
  };
  return QObject::tr("(%1, %2, %3)")
      .arg(component(direction.x()), component(direction.y()), component(direction.z()));
}

QString Describe::coordinate(double value)
{
  constexpr int digits = 12;
  return QString::number(value, 'g', digits);
}

QStringList Describe::statisticsHeader()
{
  return {QObject::tr("defined"),  QObject::tr("undefined"), QObject::tr("minimum"),
          QObject::tr("mean"),     QObject::tr("maximum"),   QObject::tr("std. dev."),
          QObject::tr("skewness"), QObject::tr("kurtosis")};
}

QStringList Describe::statisticsRow(const NbcStatMono &statistics)
{
  return {QString::number(statistics.getNDefined()),
          QString::number(statistics.getNTotal() - statistics.getNDefined()),
          numberText(statistics.getMinimum()),
          numberText(statistics.getMean()),
          numberText(statistics.getMaximum()),
          numberText(statistics.getStandardDeviation()),
          numberText(statistics.getSkewness()),
          numberText(statistics.getKurtosis())};
}

QString Describe::sampleLabel(const Job &job)
{
  return job.variable.getLabel();
}

QString Describe::estimateLabel(const Job &job)
{
  return labelled(QObject::tr("Estimate of %1").arg(job.variable.name), job.variable.unit);
}

QString Describe::deviationLabel(const Job &job)
{
  return labelled(QObject::tr("Kriging standard deviation"), job.variable.unit);
}

QString Describe::method(const Job &job)
{
  const QString neighborhood =
      job.neighborhood ? QObject::tr("moving neighborhood") : QObject::tr("unique neighborhood");
  return krigingKind(job) + QStringLiteral(", ") + neighborhood;
}

QString Describe::grid(const Job &job)
{
  const NbgIntVector3D n = job.grid.getNodesNumber();
  const NbgVector3D cell = job.grid.getCellSize();
  QStringList nodes = {QString::number(n.x()), QString::number(n.y())};
  QStringList sizes = {numberText(cell.x()), numberText(cell.y())};
  if (!job.grid.is2D()) {
    nodes << QString::number(n.z());
    sizes << numberText(cell.z());
  }
  QString text = QObject::tr("%1 nodes, cells of %2").arg(times(nodes), times(sizes));
  if (!job.lengthUnit.isEmpty())
    text += ' ' + job.lengthUnit;
  return text + turn(job.grid);
}

QString Describe::turn(const NbgGeomGrid &grid)
{
  if (grid.getRotation().isIdentity())
    return QString();
  return QObject::tr(", rows towards %1").arg(Compass::describe(grid.getRotation().getAxisY(), 2));
}

QString Describe::model(const Job &job)
{
  QStringList parts;
  if (job.model.hasNugget())
    parts << (job.getNVariables() > 1
                  ? QObject::tr("nugget")
                  : QObject::tr("nugget %1").arg(numberText(job.model.getNugget(0, 0))));
  for (int index = 0; index < job.model.getNStructures(); ++index) {
    const NbgVector3D ranges = job.model.getStructure(index).getPracticalRanges();
    QStringList distinct;
    for (int axis = 0; axis < job.getNDimensions(); ++axis) {
      if (!distinct.contains(numberText(ranges[axis])))
        distinct << numberText(ranges[axis]);
    }
    parts << QObject::tr("%1, range %2").arg(structureWithSill(job.model, index), times(distinct)) +
                 (job.lengthUnit.isEmpty() ? QString() : ' ' + job.lengthUnit);
  }
  return parts.join(QStringLiteral(" + "));
}

QVector<QPair<QString, QString>> Describe::kriging(const Job &job)
{
  const KrigingRequest &request = job.kriging;
  QVector<QPair<QString, QString>> rows = {{QObject::tr("Kind"), krigingKind(job)}};
  const auto add = [&](const QString &name, const QString &value) {
    if (!value.isEmpty())
      rows.append({name, value});
  };
  if (job.hasGrid)
    add(QObject::tr("Support"), supportOf(request));
  QStringList means;
  for (const double mean : request.means)
    means << numberText(mean);
  add(QObject::tr("Known means"), means.join(QStringLiteral(", ")));
  add(QObject::tr("Local means"), columnNames(request.localMeans));
  add(QObject::tr("Drift"), kindOfDrift(request));
  if (request.constantError)
    add(QObject::tr("Standard deviation of measurement errors"),
        numberText(*request.constantError));
  if (request.measurementError)
    add(QObject::tr("Standard deviation of measurement errors"),
        columnNames({*request.measurementError}));
  add(QObject::tr("Collocated"), columnNames(request.collocated));
  if (job.faults)
    add(QObject::tr("Faults"),
        QObject::tr("%1; nodes inside closed ones are %2")
            .arg(job.faults->shown, job.estimatesInsideFaults ? QObject::tr("estimated")
                                                              : QObject::tr("left undefined")));
  if (request.localAzimuth)
    add(QObject::tr("Local azimuth of model and neighborhood"),
        columnNames({*request.localAzimuth}));
  if (request.localFactor)
    add(QObject::tr("Local factor of the ranges"), columnNames({*request.localFactor}));
  if (request.productionVolume > 0.) {
    add(QObject::tr("Volume of a production"), numberText(request.productionVolume));
    add(QObject::tr("Theoretical mean"), numberText(request.theoreticalMean));
  }
  add(QObject::tr("Left out of the estimate"), filteredParts(request));
  QStringList extras;
  for (const ExtraOutput &extra : request.extras)
    extras << extra.label;
  add(QObject::tr("Further results"), extras.join(QStringLiteral(", ")));
  return rows;
}

QVector<QPair<QString, QString>> Describe::neighborhood(const Job &job)
{
  if (!job.neighborhood)
    return {{QObject::tr("Type"), QObject::tr("unique: every node uses all samples")}};
  const NgmNeighborhoodMoving &moving = job.neighborhood->moving;
  QVector<QPair<QString, QString>> rows = {
      {QObject::tr("Type"), QObject::tr("moving: each node uses the samples nearest to it")}};
  addEllipsoid(moving, job, rows);
  rows.append({QObject::tr("Samples, at most"), QString::number(moving.getMaximumNumber())});
  rows.append({QObject::tr("Samples, at least"), QString::number(moving.getMinimumNumber())});
  if (moving.getSplittedSectorsNumber() > 1)
    rows.append(
        {QObject::tr("Sectors"),
         QObject::tr("%1%2, at most %3 samples in each")
             .arg(QString::number(moving.getSectorsNumber()),
                  moving.isSplitSectors() ? QObject::tr(", split at the node's level") : QString(),
                  QString::number(moving.getMaximumNumberPerSector()))});
  addRules(job, rows);
  addPasses(job, rows);
  return rows;
}

QString Describe::reasonOfGaps(const Job &job)
{
  QString text = QObject::tr("Too few samples around the node");
  if (job.neighborhood && job.neighborhood->refusesNodes())
    text += QObject::tr(", or a rule of the neighborhood not met");
  if (job.faults && !job.estimatesInsideFaults)
    text += QObject::tr(", or inside a closed fault");
  return text;
}

QVector<QPair<QString, QString>> Describe::outcome(const StudyResult &result)
{
  const GridResult &grid = result.estimation->grid;
  const qint64 nSelected = grid.getNSelected();
  const qint64 nEstimated = grid.getNEstimated();
  const qint64 nFailures = result.estimation->nFailures;
  return {{QObject::tr("Nodes of the grid"), QString::number(grid.geometry.getGridSize())},
          {QObject::tr("Nodes in the mask"), QString::number(nSelected)},
          {QObject::tr("Nodes estimated"), QString::number(nEstimated)},
          {reasonOfGaps(result.job), QString::number(nSelected - nEstimated - nFailures)},
          {QObject::tr("Systems that could not be solved"), QString::number(nFailures)}};
}

QString textStatistics(const StudyResult &result)
{
  QList<QStringList> rows;
  rows << (QStringList(QString()) << Describe::statisticsHeader());
  for (int i = 0; i < result.job.getNVariables(); ++i)
    rows << (QStringList(shortLabel(result.job.getVariable(i).getLabel()))
             << Describe::statisticsRow(result.variableStatistics.getConstUnivariateStats(i)));
  if (result.estimation) {
    rows << (QStringList(shortLabel(Describe::estimateLabel(result.job)))
             << Describe::statisticsRow(result.estimation->estimate));
    rows << (QStringList(shortLabel(Describe::deviationLabel(result.job)))
             << Describe::statisticsRow(result.estimation->deviation));
  }
  constexpr int nShown = 7;  // more does not fit a terminal
  return alignedColumns(rows, nShown);
}

QList<QStringList> sillRows(const Job &job)
{
  QStringList header = {QObject::tr("structure"), QString()};
  for (int i = 0; i < job.getNVariables(); ++i)
    header << job.getVariable(i).name;
  QList<QStringList> rows = {header};
  NgmMatrix total = job.model.getNuggetMatrix();
  if (job.model.hasNugget())
    addSillRows(QObject::tr("nugget"), total, job, rows);
  for (int index = 0; index < job.model.getNStructures(); ++index) {
    const NgmMatrix &sills = job.model.getCoregionalisationMatrix(index);
    addSillRows(job.model.getStructureLabel(index), sills, job, rows);
    total = total + sills;
  }
  addSillRows(QObject::tr("total"), total, job, rows);
  return rows;
}

QString textSills(const Job &job)
{
  QList<QStringList> rows = sillRows(job);
  constexpr int widest = 24;
  for (QStringList &row : rows) {
    for (QString &text : row)
      text = shortened(text, widest);
  }
  return alignedColumns(rows, 2 + job.getNVariables());
}

QVector<QPair<QString, QString>> variogramParameters(const Variography &variography, const Job &job)
{
  const VariogramRequest request = job.variogram.value_or(VariogramRequest());
  QVector<QPair<QString, QString>> rows = {
      {QObject::tr("Lag"),
       QObject::tr("%1, with pairs within %2 of it")
           .arg(lengthText(variography.lag, job.lengthUnit),
                lengthText(request.lagTolerance * variography.lag, job.lengthUnit))}};
  const QVector<VariogramCurve> &curves = variography.sets.first().curves;
  for (int i = 0; i < curves.size(); ++i) {
    if (curves[i].isOmnidirectional)
      continue;
    constexpr double halfTurn = 180.;
    const double tolerance =
        i < request.directions.size()
            ? request.directions[i].tolerance
            : request.regularTolerance.value_or(0.5 * halfTurn / std::max(1, request.nRegular));
    rows.append(
        {curves[i].name, QObject::tr("%1, with pairs within %2%3 of it")
                             .arg(Compass::describe(curves[i].direction, job.getNDimensions()),
                                  numberText(tolerance), QChar(0xB0))});
  }
  if (request.width)
    rows.append({QObject::tr("Width"), QObject::tr("pairs within %1 of the axis of a direction")
                                           .arg(lengthText(*request.width, job.lengthUnit))});
  return rows;
}

QList<QStringList> variogramRows(const Variography &variography, const Job &job)
{
  QList<QStringList> rows;
  const QString distance = labelled(QObject::tr("distance"), job.lengthUnit);
  rows << QStringList{QObject::tr("variable"), QObject::tr("direction"), distance,
                      QObject::tr("pairs"), variography.curveName.toLower()};
  for (const VariogramSet &set : variography.sets) {
    QString name = setName(set, job);
    for (const VariogramCurve &curve : set.curves) {
      for (int lag = 0; lag < curve.distances.size(); ++lag) {
        rows << QStringList{name, lag == 0 ? curve.name : QString(),
                            numberText(curve.distances[lag]), QString::number(curve.pairs[lag]),
                            numberText(curve.values[lag])};
        name.clear();
      }
    }
  }
  if (variography.nVariables == 1) {
    for (QStringList &row : rows)
      row.removeFirst();
  }
  return rows;
}

QString textVariograms(const Variography &variography, const Job &job)
{
  QList<QStringList> rows = variogramRows(variography, job);
  for (QStringList &row : rows)
    row[0] = shortLabel(row[0]);
  return alignedColumns(rows, rows.first().size());
}

QVector<QPair<QString, QString>> crossValidationRows(const StudyResult &result, const QString &unit)
{
  const CrossValidation &validation = result.crossValidation;
  const XValRes &means = validation.means;
  return {{QObject::tr("Samples"), QString::number(result.samples.getCount())},
          {QObject::tr("Estimated, with a value"), QString::number(validation.getNEstimated())},
          {QObject::tr("Mean error"), lengthText(means.error, unit)},
          {QObject::tr("Root mean squared error"), lengthText(means.rootSquaredError, unit)},
          {QObject::tr("Mean standardized error"), numberText(means.standardizedError)},
          {QObject::tr("Root mean squared standardized error"),
           numberText(means.rootSquaredStandardizedError)},
          {QObject::tr("Mean standard deviation"), lengthText(means.standardDeviation, unit)}};
}

QString textCrossValidation(const StudyResult &result)
{
  QList<QStringList> rows;
  for (const auto &row : crossValidationRows(result))
    rows << QStringList{row.first, row.second};
  return alignedColumns(rows, 2);
}

}  // namespace orvenal

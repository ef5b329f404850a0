#include "geos/vmodel/NgmVModel.h"

#include "basic/data/NbdDataTable.h"
#include "basic/data/NbdVariableDetails.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableInt32.h"
#include "geos/NgmEnumGlobal.h"
#include "geos/vmodel/NgmAVStruct.h"
#include "vmodel/private/NgmBulkCovas.h"

#include <cmath>

// Curves and grips for display.

namespace {

constexpr int N_CURVE_STEPS = 500;

const QString DISTANCE = QStringLiteral("Distance");
const QString STRUCTURE = QStringLiteral("Structure");

/// A table of `n` rows with the distances and a curve.
struct Curve
{
  Curve(int n, const QString &key, const NbdVariableDetails &details)
  {
    table.setNSamples(n);
    distance = table.createVariableNumeric(DISTANCE, NbdVariableDetails(DISTANCE));
    value = table.createVariableNumeric(key, details);
  }

  void set(int row, double distanceOfRow, double valueOfRow)
  {
    distance->setValue(row, distanceOfRow);
    value->setValue(row, valueOfRow);
  }

  NbdDataTable table;
  NbdAVariableNumeric *distance;
  NbdAVariableNumeric *value;
};

/// Distance along the direction at which structure `index` reaches its practical range; undefined
/// for a structure without a range or without variation along the direction.
double rangeAlong(const NgmVModel &model, int index, const NbgVector3D &direction)
{
  const NgmAVStruct &structure = model.getStructure(index);
  const double reduced = NgmBulkCovas::reducedVector(model, index, direction.normalized()).norm();
  if (!structure.isScaleFactorSignificant() || !(reduced > 0.))
    return NbbGlobal::D_FFFF;
  return structure.getPracticalScaleFactor() / reduced;
}

/// Largest value of element (i, j) that the diagonal admits.
double hull(const NgmMatrix &matrix, int i, int j)
{
  return std::sqrt(std::max(0., matrix(i, i)) * std::max(0., matrix(j, j)));
}

}  // namespace

void NgmVModel::calcEnvelopeIJ(int i, int j, const NbgRotation &rotation, int n,
                               const double *distances, bool covariance, double *out) const
{
  _checkVariables(i, j);
  const NbgVector3D axis = rotation.localToWorld(NbgVector3D::X);
  for (int d = 0; d < n; ++d) {
    // The covariance of the nugget is at the origin, its variogram everywhere else.
    const bool isOrigin = distances[d] == 0.;
    out[d] = covariance == isOrigin ? hull(_nugget, i, j) : 0.;
    for (int k = 0; k < getNStructures(); ++k) {
      const double rho = calcElementaryStructure(distances[d] * axis, k);
      const double gamma = calcElementaryStructure(NbgVector3D::Null, k) - rho;
      out[d] += hull(getCoregionalisationMatrix(k), i, j) * (covariance ? rho : gamma);
    }
  }
}

NbdDataTable NgmVModel::getVarioCurve(double maxDist, const NbdVariableDetails &details,
                                      const NbgVector3D &direction, int i, int j) const
{
  Curve curve(N_CURVE_STEPS, NgmEVarioExp::VARIOGRAM.getKeyString(), details);
  for (int k = 1; k <= N_CURVE_STEPS; ++k) {
    const double distance = k * maxDist / N_CURVE_STEPS;
    curve.set(k - 1, distance, calcVarioIJ(i, j, distance * direction));
  }
  return std::move(curve.table);
}

NbdDataTable NgmVModel::getCovarianceCurve(double maxDist, const NbdVariableDetails &details,
                                           const NbgVector3D &direction, int i, int j) const
{
  Curve curve(2 * N_CURVE_STEPS + 1, NgmECovaExp::COVARIANCE.getKeyString(), details);
  for (int k = 0; k <= N_CURVE_STEPS; ++k) {
    const double distance = k * maxDist / N_CURVE_STEPS;
    const double cova = calcCovaIJ(i, j, distance * direction);
    curve.set(N_CURVE_STEPS + k, distance, cova);
    curve.set(N_CURVE_STEPS - k, distance, cova);
  }
  return std::move(curve.table);
}

NbdDataTable NgmVModel::getDirectionGrips(const NbgVector3D &direction, int i, int j) const
{
  _checkVariables(i, j);
  double sill = getNugget(i, j);
  QVector<double> values;
  for (int k = 0; k < getNStructures(); ++k) {
    sill += getCoregionalisationMatrix(k).getElement(i, j);
    values << sill;
  }
  return _gripTable(direction, values);
}

NbdDataTable NgmVModel::getDirectionCurveGrips(const NbgVector3D &direction, int i, int j) const
{
  const NbgVector3D unit = direction.normalized();
  QVector<double> values;
  for (int k = 0; k < getNStructures(); ++k) {
    const double range = rangeAlong(*this, k, direction);
    values << (NbbGlobal::isDefined(range) ? calcVarioIJ(i, j, range * unit) : range);
  }
  return _gripTable(direction, values);
}

NbdDataTable NgmVModel::getDirectionCurvesGrips(const NbgVector3D &direction, int i, int j) const
{
  _checkVariables(i, j);
  const NbgVector3D unit = direction.normalized();
  QVector<double> values;
  for (int k = 0; k < getNStructures(); ++k) {
    const double range = rangeAlong(*this, k, direction);
    const double sill = getCoregionalisationMatrix(k).getElement(i, j);
    values << (NbbGlobal::isDefined(range) ? sill * (1. - calcElementaryStructure(range * unit, k))
                                           : range);
  }
  return _gripTable(direction, values);
}

NbdDataTable NgmVModel::_gripTable(const NbgVector3D &direction,
                                   const QVector<double> &values) const
{
  QVector<double> structures, distances, kept;
  for (int k = 0; k < getNStructures(); ++k) {
    const double range = rangeAlong(*this, k, direction);
    if (!NbbGlobal::isDefined(range))
      continue;
    structures << k;
    distances << range;
    kept << values[k];
  }
  NbdDataTable table;
  table.setNSamples(structures.size());
  const QString key = NgmEVarioExp::VARIOGRAM.getKeyString();
  table.createVariableNumeric(STRUCTURE, NbdVariableDetails(STRUCTURE), Nbd::TYPE_INT32)
      ->setValues(structures);
  table.createVariableNumeric(DISTANCE, NbdVariableDetails(DISTANCE))->setValues(distances);
  table.createVariableNumeric(key, NbdVariableDetails(key))->setValues(kept);
  return table;
}

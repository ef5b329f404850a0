#include "geos/vmodel/NgmDriftModel.h"

#include "basic/data/NbdVariableDouble.h"
#include "basic/error/NbeAssertion.h"
#include "basic/geom/NbgVector3D.h"
#include "geos/interpol/NgmABlock.h"
#include "geos/interpol/NgmTarget.h"

#include <QDataStream>
#include <QObject>
#include <QStringList>

#include <algorithm>
#include <limits>

namespace {

constexpr unsigned int VERSION = 170705;
constexpr int MAXIMUM_DEGREE = 2;

double power(double x, int exponent)
{
  double result = 1.;
  for (int i = 0; i < exponent; ++i)
    result *= x;
  return result;
}

/// values[i] *= (coordinates[i] - center)^exponent
void multiplyByPower(int n, const double *coordinates, double center, int exponent, double *values)
{
  for (int i = 0; i < n; ++i)
    values[i] *= power(coordinates[i] - center, exponent);
}

/// Size of the block along an axis; 0 along the third axis of a 2D block.
double extension(const NgmABlock &block, int axis)
{
  return axis < 2 || block.is3D() ? block.getSize()[axis] : 0.;
}

}  // namespace

void NgmDriftModel::addDrifts(int variable, int degree, bool useX, bool useY, bool useZ)
{
  if (degree < 1 || degree > MAXIMUM_DEGREE)
    NBE_FAIL(QStringLiteral("invalid degree (restricted to 1 or 2"));
  const bool isUsed[] = {useX, useY, useZ};
  for (int axis = 0; axis < 3; ++axis)
    for (int exponent = 1; exponent <= degree && isUsed[axis]; ++exponent) {
      NbgIntVector3D exponents;
      exponents[axis] = exponent;
      _addTerm(variable, exponents);
    }
  for (int first = 0; first < 3 && degree == 2; ++first)
    for (int second = first + 1; second < 3; ++second)
      if (isUsed[first] && isUsed[second]) {
        NbgIntVector3D exponents;
        exponents[first] = exponents[second] = 1;
        _addTerm(variable, exponents);
      }
  _maximumDegree = std::max(_maximumDegree, degree);
}

int NgmDriftModel::getVariable(int term) const
{
  int variable = 0;
  NbgIntVector3D exponents;
  _driftRankToInfo(term, variable, exponents);
  return variable;
}

void NgmDriftModel::getDrifts(int variable, int &degree, bool &useX, bool &useY, bool &useZ) const
{
  NbgIntVector3D highest;
  for (int term = 0; term < _variables.size(); ++term)
    if (_variables[term] == variable)
      highest = highest.maximum(_exponents[term]);
  degree = highest.maximum() >= 2 ? 2 : 1;
  useX = highest.x() >= 1;
  useY = highest.y() >= 1;
  useZ = highest.z() >= 1;
}

void NgmDriftModel::getUsedCoordinates(bool &x, bool &y, bool &z) const
{
  NbgIntVector3D highest;
  for (const NbgIntVector3D &exponents : _exponents)
    highest = highest.maximum(exponents);
  x = highest.x() >= 1;
  y = highest.y() >= 1;
  z = highest.z() >= 1;
}

void NgmDriftModel::getDriftValuesAtDataPoints(int term, int variable, const NbgVector3D &center,
                                               const NbdVariableDouble &x,
                                               const NbdVariableDouble &y,
                                               const NbdVariableDouble &z,
                                               QVector<double> &out) const
{
  out.resize(int(x.getNValues()));
  getDriftValuesAtDataPoints(term, variable, center, out.size(), x.getArrayConst(),
                             y.getArrayConst(), z.getArrayConst(), out.data());
}

void NgmDriftModel::getDriftValuesAtDataPoints(int term, int variable, const NbgVector3D &center,
                                               int n, const double *x, const double *y,
                                               const double *z, double *out) const
{
  int owner = 0;
  NbgIntVector3D exponents;
  _driftRankToInfo(term, owner, exponents);
  std::fill(out, out + n, owner == variable ? 1. : 0.);
  if (owner != variable)
    return;
  const double *const coordinates[] = {x, y, z};
  for (int axis = 0; axis < 3; ++axis)
    if (exponents[axis] > 0)
      multiplyByPower(n, coordinates[axis], center[axis], exponents[axis], out);
}

double NgmDriftModel::getDriftValueAtTarget(int term, int variable, const NbgVector3D &center,
                                            const NgmTarget &target) const
{
  int owner = 0;
  NbgIntVector3D exponents;
  _driftRankToInfo(term, owner, exponents);
  if (owner != variable)
    return 0.;
  double value = 1.;
  for (int axis = 0; axis < 3; ++axis) {
    value *= power(target.getCenter()[axis] - center[axis], exponents[axis]);
    // The mean of a squared coordinate over a segment of length L is L^2 / 12 more.
    if (exponents[axis] == 2 && target.isBlock())
      value += power(extension(target.getBlock(), axis), 2) / 12.;
  }
  return value;
}

QString NgmDriftModel::briefSummary() const
{
  const char *const axes[] = {"X", "Y", "Z"};
  bool isUsed[3];
  getUsedCoordinates(isUsed[0], isUsed[1], isUsed[2]);
  QStringList used;
  for (int axis = 0; axis < 3; ++axis)
    if (isUsed[axis])
      used << QLatin1String(axes[axis]);
  return QObject::tr("Polynomial Drift: Max degree=%1 for {%2}")
      .arg(QString::number(_maximumDegree), used.join(QStringLiteral(",")));
}

QString NgmDriftModel::debug(int /*level*/) const
{
  QString text =
      QStringLiteral("Total Number of Drifts Equations = %1\n").arg(getNDriftEquations());
  for (int term = 0; term < getNDriftEquations(); ++term) {
    const NbgIntVector3D &exponents = _exponents[term];
    text += QStringLiteral("Variable #%1 <=> Drift #%2 Polynomial, degrees = (%3,%4,%5)\n")
                .arg(_variables[term])
                .arg(term)
                .arg(exponents.x())
                .arg(exponents.y())
                .arg(exponents.z());
  }
  return text;
}

QList<unsigned int> NgmDriftModel::_serializedVersions() const
{
  return {VERSION};
}

unsigned int NgmDriftModel::_currentSerializedVersion() const
{
  return VERSION;
}

void NgmDriftModel::_serialize(QDataStream &stream) const
{
  stream << qint32(_maximumDegree) << qint32(_variables.size());
  for (const int variable : _variables)
    stream << qint32(variable);
  stream << qint32(_exponents.size());
  for (const NbgIntVector3D &exponents : _exponents)
    stream << qint32(exponents.x()) << qint32(exponents.y()) << qint32(exponents.z());
}

void NgmDriftModel::_unserialize(QDataStream &stream, unsigned int /*version*/)
{
  NgmDriftModel model;
  qint32 maximumDegree = 0, nVariables = 0, nExponents = 0;
  stream >> maximumDegree >> nVariables;
  _checkCount(stream, nVariables, sizeof(qint32), std::numeric_limits<qint32>::max());
  for (qint32 i = 0; i < nVariables; ++i) {
    qint32 variable = 0;
    stream >> variable;
    _checkStream(stream);
    model._variables << variable;
  }
  stream >> nExponents;
  _checkCount(stream, nExponents, 3 * sizeof(qint32), std::numeric_limits<qint32>::max());
  if (nExponents != nVariables || maximumDegree < 0 || maximumDegree > MAXIMUM_DEGREE)
    _refuse(QObject::tr("inconsistent drift terms"));
  for (qint32 i = 0; i < nExponents; ++i) {
    qint32 x = 0, y = 0, z = 0;
    stream >> x >> y >> z;
    _checkStream(stream);
    const auto isExponent = [](qint32 e) { return e >= 0 && e <= MAXIMUM_DEGREE; };
    if (!isExponent(x) || !isExponent(y) || !isExponent(z))
      _refuse(QObject::tr("invalid degree of a drift term"));
    model._exponents << NbgIntVector3D(x, y, z);
  }
  model._maximumDegree = maximumDegree;
  *this = model;
}

void NgmDriftModel::_driftRankToInfo(int term, int &variable, NbgIntVector3D &exponents) const
{
  if (term < 0 || term >= _variables.size())
    NBE_FAIL(QStringLiteral("invalid drift term"));
  variable = _variables[term];
  exponents = _exponents[term];
}

void NgmDriftModel::_addTerm(int variable, const NbgIntVector3D &exponents)
{
  _variables << variable;
  _exponents << exponents;
}

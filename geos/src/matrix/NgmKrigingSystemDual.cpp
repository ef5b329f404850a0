#include "geos/matrix/NgmKrigingSystemDual.h"

#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeUserError.h"

#include <QObject>

NgmKrigingSystemDual::NgmKrigingSystemDual() : NgmKrigingSystemDual(1, 1, false, false, 0) {}

NgmKrigingSystemDual::NgmKrigingSystemDual(int nSamples, int nVariables, bool simple,
                                           bool singleCondition, int nDrifts)
    : NgmAKrigingSystem(nSamples, nVariables,
                        _countUniversality(nVariables, simple, singleCondition), nDrifts),
      _inverted(false),
      _lhs(true),
      _inverse(true),
      _dualCoefficients(false)
{
}

NgmKrigingSystemDual::NgmKrigingSystemDual(const NgmKrigingSystemDual &other) = default;

NgmKrigingSystemDual &NgmKrigingSystemDual::operator=(const NgmKrigingSystemDual &other) = default;

NgmKrigingSystemDual::~NgmKrigingSystemDual() = default;

int NgmKrigingSystemDual::getMaximumNumberOfSamples(int nVariables)
{
  return 10000 / (nVariables * nVariables);
}

void NgmKrigingSystemDual::buildSystem(const NgmVModel &model, const NbdVariableDouble &x,
                                       const NbdVariableDouble &y, const NbdVariableDouble &z,
                                       const QList<NbdAVariableNumeric *> &dataVars, int nThreads,
                                       const QList<NbdAVariableNumeric *> &)
{
  buildSystem(model, _toArrays(x, y, z, dataVars), nThreads);
}

void NgmKrigingSystemDual::buildSystem(const NgmVModel &model, const NgmKrigingSamples &samples,
                                       int nThreads)
{
  _inverted = false;
  if (samples.n > getMaximumNumberOfSamples(getNVariables()))
    throw NbeUserError(QObject::tr("Too many data for using a unique neighborhood."));
  _resize(samples.n);
  _lhs.resize(getNEquations(), false);
  _buildLHS(model, samples, nullptr);
  if (getNValidDataEquations() == 0)
    throw NbeUserError(
        QObject::tr("WARNING: There is no valid data. Unable to build the kriging system."));

  _compressLHS();
  if (_lhs.invert(_inverse, nThreads) != 0)
    throw NbeUserError(QObject::tr("Inversion errors have been encountered"));
  NgmMatrix coefficients(false);
  NgmMatrix::makeProduct(_inverse, _compressData(samples), coefficients);
  coefficients.transpose(_dualCoefficients);
  _inverted = true;
}

void NgmKrigingSystemDual::_compressLHS()
{
  const int nEquations = getNEquations();
  if (getNValidEquations() == nEquations)
    return;
  NgmMatrix compressed(getNValidEquations(), getNValidEquations(), true);
  double *to = compressed.elements();
  for (int j = 0; j < nEquations; ++j) {
    if (_getCompressedRow(j) < 0)
      continue;
    const double *column = _lhs.constElements() + qint64(j) * nEquations;
    for (int i = 0; i < nEquations; ++i)
      if (_getCompressedRow(i) >= 0)
        *to++ = column[i];
  }
  _lhs = compressed;
}

NgmMatrix NgmKrigingSystemDual::_compressData(const NgmKrigingSamples &samples) const
{
  const int nVariables = getNVariables();
  NgmMatrix data(getNValidEquations(), 1, false);
  double *z = data.elements();
  for (int equation = 0; equation < _getNDataEquations(); ++equation)
    if (_getCompressedRow(equation) >= 0)
      z[_getCompressedRow(equation)] = samples.values[equation % nVariables][equation / nVariables];
  return data;
}

namespace {

const QString &notDefined()
{
  static const QString text = QStringLiteral("Method not defined.");
  return text;
}

}  // namespace

const NgmMatrix &NgmKrigingSystemDual::getRHSMatrix() const
{
  NBE_FAIL(notDefined());
}

const NgmMatrix &NgmKrigingSystemDual::getWeightsMatrix() const
{
  NBE_FAIL(notDefined());
}

NgmMatrix &NgmKrigingSystemDual::_getRHSMatrix()
{
  NBE_FAIL(notDefined());
}

NgmMatrix &NgmKrigingSystemDual::_getWeightsMatrix()
{
  NBE_FAIL(notDefined());
}

void NgmKrigingSystemDual::computeSumOfWeights(QVector<double> &) const
{
  NBE_FAIL(notDefined());
}

void NgmKrigingSystemDual::computeSumOfPositiveWeights(QVector<double> &) const
{
  NBE_FAIL(notDefined());
}

void NgmKrigingSystemDual::computeWeightForMean(QVector<double> &) const
{
  NBE_FAIL(notDefined());
}

void NgmKrigingSystemDual::computeLagrange(QVector<double> &) const
{
  NBE_FAIL(notDefined());
}

QString NgmKrigingSystemDual::debug(int level) const
{
  return QStringLiteral("Kriging system (unique)\n") + NgmAKrigingSystem::debug(level) +
         QStringLiteral("Inverted: %1\n")
             .arg(_inverted ? QStringLiteral("true") : QStringLiteral("false")) +
         QStringLiteral("LHS\n") + _lhs.debug(level) + QStringLiteral("LHS_Inverse\n") +
         _inverse.debug(level);
}

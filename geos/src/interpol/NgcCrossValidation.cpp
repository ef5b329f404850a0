#include "geos/interpol/NgcCrossValidation.h"

#include "basic/error/NbeAssertion.h"
#include "interpol/private/NgwCrossValidation.h"

#include <QObject>

#include <cmath>

namespace {

double difference(double a, double b)
{
  return NbbGlobal::isDefined(a) && NbbGlobal::isDefined(b) ? a - b : NbbGlobal::D_FFFF;
}

double root(double value)
{
  return NbbGlobal::isDefined(value) ? std::sqrt(value) : NbbGlobal::D_FFFF;
}

}  // namespace

NgcCrossValidation::NgcCrossValidation(const QString &key) : NgcAKriging(key)
{
  setRejectionMode(NgcERejectionMode::REJECTION_BY_TARGET);
  setRejectionVarIndex(0);
  for (const QString &role :
       {Nbd::Role::V, Nbd::Role::STDEV, Nbd::Role::XVAL_ERR, Nbd::Role::XVAL_SQ_ERR,
        Nbd::Role::XVAL_ST_ERR, Nbd::Role::XVAL_SQ_ST_ERR})
    setPerformStatistics(role);
}

NgcCrossValidation::~NgcCrossValidation()
{
  _finish();
}

void NgcCrossValidation::_addRuntimeConstraints()
{
  NgcAKriging::_addRuntimeConstraints();
  int nLines = 0;
  switch (getConstNeighborhood().getRejectionMode().toEnum()) {
    case NgcERejectionMode::EValue::REJECTION_BY_LINE:
      nLines = 1;
      break;
    case NgcERejectionMode::EValue::REJECTION_BY_TARGET:
    case NgcERejectionMode::EValue::REJECTION_BY_PARTITION:
      break;
    default:
      NBE_FAIL(
          QStringLiteral("NgcCrossValidation::_addRuntimeConstraints: no rejection mode defined."));
  }
  _addVariableRule(Nbd::Dataset::INPUT, Nbd::Role::OBJECT_ID, Nbd::ACCESS_READ, Nbd::TYPE_NONE,
                   nLines, 1);
}

QStringList NgcCrossValidation::_getOutputRoles() const
{
  return NgcAKriging::_getOutputRoles() + QStringList{Nbd::Role::XVAL_ERR, Nbd::Role::XVAL_SQ_ERR,
                                                      Nbd::Role::XVAL_ST_ERR,
                                                      Nbd::Role::XVAL_SQ_ST_ERR};
}

void NgcCrossValidation::_preProcessing()
{
  _setProgressMessageDetail(QObject::tr("Initialization"));
  _results.reset();
  if (isBlockInterpolation())
    NBE_FAIL(
        QStringLiteral("NgcCrossValidation::_preProcessing: Only point kriging is authorized"));
  if (!isUsingMoving())
    NBE_FAIL(QStringLiteral(
        "NgcCrossValidation::_preProcessing: Only moving neighborhood is authorized"));
  if (!getConstNeighborhood().isRejectionActive())
    NBE_FAIL(
        QStringLiteral("NgcCrossValidation::_preProcessing: You must define the rejection policy"));
  NgcAKriging::_preProcessing();
}

void NgcCrossValidation::_preLaunchThreads()
{
  NgcAKriging::_preLaunchThreads();
  _setProgressMessageDetail(QObject::tr("Cross Validation..."));
}

void NgcCrossValidation::_postProcessing()
{
  _results.estimation = _calcMean(Nbd::Role::V);
  _results.standardDeviation = _calcMean(Nbd::Role::STDEV);
  _results.error = _calcMean(Nbd::Role::XVAL_ERR);
  _results.squaredError = _calcMean(Nbd::Role::XVAL_SQ_ERR);
  _results.standardizedError = _calcMean(Nbd::Role::XVAL_ST_ERR);
  _results.squaredStandardizedError = _calcMean(Nbd::Role::XVAL_SQ_ST_ERR);
  _results.rootSquaredError = root(_results.squaredError);
  _results.rootSquaredStandardizedError = root(_results.squaredStandardizedError);
  _results.realValue = difference(_results.estimation, _results.error);
  _setProgressMessageDetail(QObject::tr("Done"));
}

double NgcCrossValidation::_calcMean(const QString &role) const
{
  const int index = getMainVariableIndex();
  if (!getPerformStatsorProps() || !hasStatistics(role, index))
    return NbbGlobal::D_FFFF;
  return getStatistics(role, index).getMean();
}

NgwAThread *NgcCrossValidation::_createComputingThread(NgwThreadPool *pool)
{
  return new NgwCrossValidation(pool, *this);
}

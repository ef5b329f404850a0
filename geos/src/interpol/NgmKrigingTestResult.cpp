#include "geos/interpol/NgmKrigingTestResult.h"

#include "basic/data/NbdVariableDouble.h"
#include "basic/error/NbeAssertion.h"

#include <QObject>

#include <algorithm>

NgmKrigingTestResult::NgmKrigingTestResult() = default;

NgmKrigingTestResult::~NgmKrigingTestResult() = default;

void NgmKrigingTestResult::reset()
{
  NgmAInterpolTestResult::reset();
  _results.clear();
}

bool NgmKrigingTestResult::hasResults() const
{
  return std::any_of(_results.begin(), _results.end(), [](const NgmKrigingTestResultMono &result) {
    return NbbGlobal::isDefined(result.estimation);
  });
}

const NgmKrigingTestResultMono &NgmKrigingTestResult::getKrigingResults(int variable) const
{
  if (variable < 0 || variable >= _results.size())
    NBE_FAIL(QStringLiteral("0 <= variable < getKrigingResultsNumber()"));
  return _results[variable];
}

NgmKrigingTestResultMono &NgmKrigingTestResult::getKrigingResultsRef(int variable)
{
  getKrigingResults(variable);
  return _results[variable];
}

void NgmKrigingTestResult::setKrigingResultsNumber(int nVariables)
{
  _results.clear();
  for (int variable = 0; variable < nVariables; ++variable)
    _results.append(NgmKrigingTestResultMono());
}

void NgmKrigingTestResult::setWeights(const QList<NbdVariableDouble *> &weights)
{
  NbdDataPoints &neighbors = getNeighborsRef();
  for (const NbdVariableDouble *variable : weights) {
    if (variable->getNValues() != neighbors.getNSamples())
      NBE_FAIL(QObject::tr("Neighbors and Weights have different number of samples"));
    neighbors.getDataTable().addVariable(Nbd::Role::WEIGHT, *variable);
  }
}

QString NgmKrigingTestResult::getWeightName(const QString &role, const QString &variable)
{
  return QObject::tr("Weight of %1 for %2").arg(variable, role);
}

QString NgmKrigingTestResult::toString(int level) const
{
  QString text =
      QStringLiteral("Kriging Test Results\n") + QStringLiteral("====================\n");
  const QList<NbdVariableDetails> &details = getInputDetails();
  for (int variable = 0; variable < _results.size(); ++variable) {
    const QString name = variable < details.size() ? details[variable].getName()
                                                   : QStringLiteral("#%1").arg(variable + 1);
    const NgmKrigingTestResultMono &result = _results[variable];
    text += QStringLiteral("Results for %1:").arg(name) + QLatin1Char('\n') + result.debug(level);
  }
  return text;
}

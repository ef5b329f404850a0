#include "geos/fit/NgmVModelAutoFitting.h"

#include "basic/error/NbeProgrammingError.h"
#include "geos/fit/NgmOptimizerGoulard.h"
#include "geos/fit/NgmVModelOptimizerFoxleg.h"

NgmVModelAutoFitting::NgmVModelAutoFitting() = default;

NgmVModelAutoFitting::NgmVModelAutoFitting(const NgmVModelAutoFitting &other)
    : NgmVModelAutoFitting()
{
  _copySettings(other);
  _initialDelta = other._initialDelta;
  _useHybrid = other._useHybrid;
  _showGoulard = other._showGoulard;
}

NgmVModelAutoFitting::~NgmVModelAutoFitting()
{
  _finish();
}

std::unique_ptr<NgmAOptimizer> NgmVModelAutoFitting::_initialize()
{
  if (getInitialModel().getFitSillsOnly())
    return std::make_unique<NgmOptimizerGoulard>();
  if (_useHybrid) {
    auto hybrid = std::make_unique<NgmVModelOptimizerFoxleg>();
    hybrid->setInitialDelta(_initialDelta);
    hybrid->setShowGoulard(_showGoulard);
    return hybrid;
  }
  if (getInitialModel().getNVariables() > 1)
    throw NbeProgrammingError(QStringLiteral(
        "NgmVModelAutoFitting::_doFit: Standard Foxleg cannot be used in multivariate case"));
  auto foxleg = std::make_unique<NgmOptimizerFoxleg>();
  foxleg->setInitialDelta(_initialDelta);
  return foxleg;
}

void NgmVModelAutoFitting::_postProcessing()
{
  _aic = NbbGlobal::D_FFFF;
  _bic = NbbGlobal::D_FFFF;
  if (const auto *goulard = dynamic_cast<const NgmOptimizerGoulard *>(_getOptimizer()))
    _gof = goulard->getGOF();
  if (const auto *foxleg = dynamic_cast<const NgmOptimizerFoxleg *>(_getOptimizer())) {
    _gof = foxleg->getGOF();
    _aic = foxleg->getAIC();
    _bic = foxleg->getBIC();
  }
}

QString NgmVModelAutoFitting::toString() const
{
  QStringList lines;
  lines << QStringLiteral("curve=%1").arg(getFittedCurve().getKeyString())
        << QStringLiteral("initialDelta=%1").arg(_initialDelta)
        << QStringLiteral("useHybrid=%1").arg(int(_useHybrid))
        << QStringLiteral("showGoulard=%1").arg(int(_showGoulard))
        << QStringLiteral("nbMaxIteration=%1").arg(getNbMaxIteration())
        << QStringLiteral("nPairsExponent=%1").arg(getNPairsExponent())
        << QStringLiteral("nPairsMinimum=%1").arg(getNPairsMinimum())
        << QStringLiteral("useDeprecatedWeighting=%1").arg(int(useDeprecatedWeightingFunction()));
  if (_hasInitialModel())
    lines << getInitialModel().toString();
  if (isCompleted())
    lines << QStringLiteral("gof=%1").arg(_gof) << QStringLiteral("aic=%1").arg(_aic)
          << QStringLiteral("bic=%1").arg(_bic);
  return lines.join(QLatin1Char('\n'));
}

#include "geos/fit/NgmVModelAutoFittingConstrained.h"

#include "basic/error/NbeProgrammingError.h"
#include "basic/error/NbeUserError.h"
#include "geos/fit/NgmVModelAutoFitting.h"

#include <QObject>

#include <cmath>

namespace {

const QString STANDARD = QStringLiteral("STANDARD");
const QString MINIMUM = QStringLiteral("wrt min nugget");
const QString MAXIMUM = QStringLiteral("wrt max nugget");

// Relative to the variances.
constexpr double TOLERANCE = 1e-9;

/// a - b has no negative eigenvalue, but for rounding.
bool isNotBelow(const NgmMatrix &a, const NgmMatrix &b)
{
  NgmMatrix difference = a - b;
  double trace = 0.;
  for (int i = 0; i < a.getNRows(); ++i)
    trace += std::fabs(a(i, i)) + std::fabs(b(i, i));
  for (int i = 0; i < a.getNRows(); ++i)
    difference.setElement(i, i, difference(i, i) + TOLERANCE * trace);
  return difference.isPositiveDefinite(false, false);
}

}  // namespace

NgmVModelAutoFittingConstrained::NgmVModelAutoFittingConstrained()
{
  setProgressMessage(QObject::tr("Fits the variogram model"));
}

NgmVModelAutoFittingConstrained::~NgmVModelAutoFittingConstrained()
{
  _finish();
}

void NgmVModelAutoFittingConstrained::setVModelAutoFittingProto(NgmVModelAutoFitting *proto)
{
  if (proto != _proto.get())
    _proto.reset(proto);
}

const NgmVModel &NgmVModelAutoFittingConstrained::getFittedModel() const
{
  if (!isCompleted() || !_fittedModel)
    throw NbeProgrammingError(
        QStringLiteral("NgmVModelAutoFittingConstrained::getFittedModel: no fitted model"));
  return *_fittedModel;
}

double NgmVModelAutoFittingConstrained::getGOF() const
{
  getFittedModel();
  return _gof;
}

void NgmVModelAutoFittingConstrained::_doRun()
{
  _fittedModel.reset();
  _reset();
  if (!_proto)
    throw NbeProgrammingError(QStringLiteral("Unset variogram model auto fitter prototype."));
  _checkConstraints();
  NbcAProgressComposite<NbcAProgress>::_doRun();
}

void NgmVModelAutoFittingConstrained::_checkConstraints() const
{
  const NgmVModelToBeOptimized &model = _proto->getInitialModel();
  NgmMatrix minimum(0, 0, false);
  NgmMatrix maximum(0, 0, false);
  const bool hasMinimum = model.hasMinNugget(minimum);
  const bool hasMaximum = model.hasMaxNugget(maximum);
  const auto check = [](bool isValid, const QString &message) {
    if (!isValid)
      throw NbeUserError(message);
  };
  const auto isSized = [&](const NgmMatrix &matrix) {
    return matrix.getNRows() == model.getNVariables() && matrix.isSquared();
  };
  check((!hasMinimum || isSized(minimum)) && (!hasMaximum || isSized(maximum)),
        QObject::tr("Inconsistent constraint matrix size"));
  check(!hasMinimum || !hasMaximum || isNotBelow(maximum, minimum),
        QObject::tr("Inconsistent min and max constraint matrices."));
}

void NgmVModelAutoFittingConstrained::_preProcessing()
{
  for (const QString &id : {STANDARD, MINIMUM, MAXIMUM}) {
    auto *fitting = new NgmVModelAutoFitting(*_proto);
    _registerProgressable(id, fitting, QObject::tr("Fits the variogram model"), 1);
  }
}

NgmMatrix NgmVModelAutoFittingConstrained::_getConstraint(const QString &id) const
{
  NgmMatrix bound(0, 0, false);
  if (id == MINIMUM)
    _proto->getInitialModel().hasMinNugget(bound);
  else if (id == MAXIMUM)
    _proto->getInitialModel().hasMaxNugget(bound);
  else
    throw NbeProgrammingError(QStringLiteral("Not a constrained mode."));
  return bound;
}

bool NgmVModelAutoFittingConstrained::_isViolated(const QString &id) const
{
  const NgmMatrix bound = _getConstraint(id);
  if (bound.getNElements() == 0)
    return false;
  const NgmMatrix &nugget = _fittedModel->getNuggetMatrix();
  return id == MINIMUM ? !isNotBelow(nugget, bound) : !isNotBelow(bound, nugget);
}

bool NgmVModelAutoFittingConstrained::_prepareProgressable(const QString &id)
{
  if (id == STANDARD)
    return true;
  if (!_isViolated(id))
    return false;
  auto *fitting = static_cast<NgmVModelAutoFitting *>(_getProgressable(id));
  NgmVModelToBeOptimized model(fitting->getInitialModel());
  model.setKnownNuggetMatrix(_getConstraint(id));
  fitting->setInitialModel(model);
  return true;
}

void NgmVModelAutoFittingConstrained::_progressableFinished(const QString &id)
{
  const auto *fitting = static_cast<const NgmVModelAutoFitting *>(_getProgressable(id));
  _fittedModel = std::make_unique<NgmVModel>(fitting->getFittedModel());
  _gof = fitting->getGOF();
}

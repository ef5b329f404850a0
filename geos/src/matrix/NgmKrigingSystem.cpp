#include "geos/matrix/NgmKrigingSystem.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableInt32.h"
#include "basic/error/NbeAssertion.h"
#include "geos/interpol/NgmTarget.h"

NgmKrigingSystem::NgmKrigingSystem() : NgmKrigingSystem(1, false, false, 0) {}

NgmKrigingSystem::NgmKrigingSystem(int nVariables, bool simple, bool singleCondition, int nDrifts)
    : NgmAKrigingSystem(1, nVariables, _countUniversality(nVariables, simple, singleCondition),
                        nDrifts),
      _system(getNEquations(), nVariables, true),
      _weightsReady(false)
{
}

NgmKrigingSystem::NgmKrigingSystem(const NgmKrigingSystem &other) = default;

NgmKrigingSystem &NgmKrigingSystem::operator=(const NgmKrigingSystem &other) = default;

NgmKrigingSystem::~NgmKrigingSystem() = default;

bool NgmKrigingSystem::isReady() const
{
  return _weightsReady && _system.isSolved();
}

const NgmMatrix &NgmKrigingSystem::getLHSMatrix() const
{
  if (!_lowerIsFilled)
    _system.getLHS().makeSymmetrical();
  _lowerIsFilled = true;
  return _system.getLHS();
}

const NgmMatrix &NgmKrigingSystem::getRHSMatrix() const
{
  return _system.getRHS();
}

const NgmMatrix &NgmKrigingSystem::getWeightsMatrix() const
{
  return _system.getResults();
}

NgmMatrix &NgmKrigingSystem::_getLHSMatrix()
{
  _lowerIsFilled = false;
  return _system.getLHS();
}

NgmMatrix &NgmKrigingSystem::_getRHSMatrix()
{
  return _system.getRHS();
}

void NgmKrigingSystem::resetSystem(int nSamples, const NbgVector3D &point)
{
  _resize(nSamples);
  setReferencePoint(point);
  _weightsReady = false;
  _system.resize(getNEquations(), getNVariables());
  _lowerIsFilled = true;
}

// Point targets.

void NgmKrigingSystem::buildSystem(const NgmVModel &model, const NbdVariableDouble &x,
                                   const NbdVariableDouble &y, const NbdVariableDouble &z,
                                   const QList<NbdAVariableNumeric *> &extDriftVars,
                                   const NgmTarget &target,
                                   const QList<NbdAVariableNumeric *> &dataVars,
                                   const QVector<double> &extDriftValuesAtTarget,
                                   NgmVModelCovaCache *cache)
{
  buildSystem(model, _toArrays(x, y, z, dataVars, extDriftVars), target, cache,
              _toArray(extDriftValuesAtTarget));
}

void NgmKrigingSystem::buildSystem(const NgmVModel &model, const NgmKrigingSamples &samples,
                                   const NgmTarget &target, NgmVModelCovaCache *cache,
                                   const double *extDriftValuesAtTarget)
{
  _buildLHS(model, samples, cache);
  _buildRHS(model, samples, target, false, cache, extDriftValuesAtTarget);
}

void NgmKrigingSystem::buildSystemLHS(const NgmVModel &model, const NbdVariableDouble &x,
                                      const NbdVariableDouble &y, const NbdVariableDouble &z,
                                      const QList<NbdAVariableNumeric *> &extDriftVars,
                                      const QList<NbdAVariableNumeric *> &dataVars)
{
  buildSystemLHS(model, _toArrays(x, y, z, dataVars, extDriftVars), nullptr);
}

void NgmKrigingSystem::buildSystemLHS(const NgmVModel &model, const NgmKrigingSamples &samples,
                                      NgmVModelCovaCache *cache)
{
  _weightsReady = false;
  _buildLHS(model, samples, cache);
  _invalidateEquations();
}

void NgmKrigingSystem::buildSystemRHS(const NgmVModel &model, const NbdVariableDouble &x,
                                      const NbdVariableDouble &y, const NbdVariableDouble &z,
                                      const NgmTarget &target,
                                      const QVector<double> &extDriftValuesAtTarget,
                                      NgmVModelCovaCache *cache)
{
  buildSystemRHS(model, _toArrays(x, y, z), target, cache, _toArray(extDriftValuesAtTarget));
}

void NgmKrigingSystem::buildSystemRHS(const NgmVModel &model, const NgmKrigingSamples &samples,
                                      const NgmTarget &target, NgmVModelCovaCache *cache,
                                      const double *extDriftValuesAtTarget)
{
  _buildRHS(model, samples, target, false, cache, extDriftValuesAtTarget);
}

void NgmKrigingSystem::_buildRHS(const NgmVModel &model, const NgmKrigingSamples &samples,
                                 const NgmTarget &target, bool asBlock, NgmVModelCovaCache *cache,
                                 const double *extDriftValuesAtTarget)
{
  _weightsReady = false;
  if (asBlock)
    _buildRHSBlock(model, target, samples, extDriftValuesAtTarget, _system.getRHS(), cache);
  else
    _buildRHSPoint(model, target.getCenter(), samples, extDriftValuesAtTarget, _system.getRHS(),
                   cache);
  _invalidateEquations();
}

// Variants.

void NgmKrigingSystem::buildSystemBlock(const NgmVModel &model, const NbdVariableDouble &x,
                                        const NbdVariableDouble &y, const NbdVariableDouble &z,
                                        const QList<NbdAVariableNumeric *> &extDriftVars,
                                        const NgmTarget &target,
                                        const QList<NbdAVariableNumeric *> &dataVars,
                                        const QVector<double> &extDriftValuesAtTarget,
                                        NgmVModelCovaCache *cache)
{
  buildSystemBlock(model, _toArrays(x, y, z, dataVars, extDriftVars), target, cache,
                   _toArray(extDriftValuesAtTarget));
}

void NgmKrigingSystem::buildSystemBlock(const NgmVModel &model, const NgmKrigingSamples &samples,
                                        const NgmTarget &target, NgmVModelCovaCache *cache,
                                        const double *extDriftValuesAtTarget)
{
  _buildLHS(model, samples, cache);
  _buildRHS(model, samples, target, true, cache, extDriftValuesAtTarget);
}

void NgmKrigingSystem::buildSystemFiltered(const NgmVModel &model, const NgmVModel &filteredModel,
                                           const NbdVariableDouble &x, const NbdVariableDouble &y,
                                           const NbdVariableDouble &z,
                                           const QList<NbdAVariableNumeric *> &extDriftVars,
                                           const NgmTarget &target,
                                           const QList<NbdAVariableNumeric *> &dataVars,
                                           const QVector<double> &extDriftValuesAtTarget,
                                           NgmVModelCovaCache *cache)
{
  buildSystemFiltered(model, filteredModel, _toArrays(x, y, z, dataVars, extDriftVars), target,
                      cache, _toArray(extDriftValuesAtTarget));
}

void NgmKrigingSystem::buildSystemFiltered(const NgmVModel &model, const NgmVModel &filteredModel,
                                           const NgmKrigingSamples &samples,
                                           const NgmTarget &target, NgmVModelCovaCache *cache,
                                           const double *extDriftValuesAtTarget)
{
  resetSystem(samples.n, target.getCenter());
  _buildLHS(model, samples, cache);
  _buildRHS(filteredModel, samples, target, target.isBlock(), cache, extDriftValuesAtTarget);
}

void NgmKrigingSystem::buildSystemMisties(
    const NgmVModel &model, const NgmMatrix &defaultCorrection,
    const QMap<int, NgmMatrix> &corrections, const NbdVariableDouble &x, const NbdVariableDouble &y,
    const NbdVariableDouble &z, const NbdVariableInt32 &groups,
    const QList<NbdAVariableNumeric *> &dataVars, const NgmTarget &target,
    const QList<NbdAVariableNumeric *> &extDriftVars, const QVector<double> &extDriftValuesAtTarget,
    NgmVModelCovaCache *cache)
{
  if (groups.getNValues() != x.getNValues())
    NBE_FAIL(QStringLiteral("groups.getNValues() == x.getNValues()"));
  const NgmKrigingSamples samples = _toArrays(x, y, z, dataVars, extDriftVars);
  resetSystem(samples.n, target.getCenter());
  if (samples.n > 0) {
    _buildLHS(model, samples, cache);
    _addMisties(defaultCorrection, corrections, groups);
  }
  _buildRHS(model, samples, target, false, cache, _toArray(extDriftValuesAtTarget));
}

void NgmKrigingSystem::_addMisties(const NgmMatrix &defaultCorrection,
                                   const QMap<int, NgmMatrix> &corrections,
                                   const NbdVariableInt32 &groups)
{
  const int *group = groups.getArrayConst();
  for (int s = 0; s < getNSamples(); ++s) {
    if (group[s] == NbbGlobal::I32_FFFF)
      continue;
    const auto found = corrections.constFind(group[s]);
    const NgmMatrix &correction = found == corrections.constEnd() ? defaultCorrection : *found;
    for (int t = s; t < getNSamples(); ++t)
      if (group[t] == group[s])
        _addMistieOfPair(s, t, correction);
  }
}

void NgmKrigingSystem::_addMistieOfPair(int s, int t, const NgmMatrix &correction)
{
  const int nVariables = getNVariables();
  NgmMatrix &lhs = _system.getLHS();
  for (int a = 0; a < nVariables; ++a)
    // One half of the pairs of a sample with itself, the other being its mirror image.
    for (int b = s == t ? a : 0; b < nVariables; ++b) {
      const int row = s * nVariables + a;
      const int column = t * nVariables + b;
      if (_isValidEquation(row) && _isValidEquation(column))
        lhs.addToElement(row, column, correction(a, b));
    }
}

void NgmKrigingSystem::_invalidateEquations()
{
  if (getNValidEquations() == getNEquations())
    return;
  for (int equation = 0; equation < getNEquations(); ++equation)
    if (!_isValidEquation(equation))
      _system.setNullEquation(equation);
}

int NgmKrigingSystem::solve()
{
  _weightsReady = false;
  if (getNValidDataEquations() == 0 && _getNUniversality() > 0)
    return 1;
  const int info = _system.solve();
  _weightsReady = info == 0;
  return info;
}

QString NgmKrigingSystem::debug(int level) const
{
  getLHSMatrix();
  return QStringLiteral("Kriging system (moving)\n") + NgmAKrigingSystem::debug(level) +
         _system.debug(level);
}

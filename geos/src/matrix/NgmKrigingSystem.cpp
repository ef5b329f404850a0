#include "geos/matrix/NgmKrigingSystem.h"

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
}

void NgmKrigingSystem::buildSystem(const NgmVModel &model, const NbdVariableDouble &x,
                                   const NbdVariableDouble &y, const NbdVariableDouble &z,
                                   const QList<NbdAVariableNumeric *> &, const NgmTarget &target,
                                   const QList<NbdAVariableNumeric *> &dataVars,
                                   const QVector<double> &, NgmVModelCovaCache *cache)
{
  buildSystem(model, _toArrays(x, y, z, dataVars), target, cache);
}

void NgmKrigingSystem::buildSystem(const NgmVModel &model, const NgmKrigingSamples &samples,
                                   const NgmTarget &target, NgmVModelCovaCache *cache)
{
  _buildLHS(model, samples, cache);
  buildSystemRHS(model, samples, target, cache);
}

void NgmKrigingSystem::buildSystemLHS(const NgmVModel &model, const NbdVariableDouble &x,
                                      const NbdVariableDouble &y, const NbdVariableDouble &z,
                                      const QList<NbdAVariableNumeric *> &,
                                      const QList<NbdAVariableNumeric *> &dataVars)
{
  buildSystemLHS(model, _toArrays(x, y, z, dataVars), nullptr);
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
                                      const NgmTarget &target, const QVector<double> &,
                                      NgmVModelCovaCache *cache)
{
  buildSystemRHS(model, _toArrays(x, y, z, {}), target, cache);
}

void NgmKrigingSystem::buildSystemRHS(const NgmVModel &model, const NgmKrigingSamples &samples,
                                      const NgmTarget &target, NgmVModelCovaCache *cache)
{
  _weightsReady = false;
  _buildRHSPoint(model, target.getCenter(), samples, _system.getRHS(), cache);
  _invalidateEquations();
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
  const int info = _system.solve();
  _weightsReady = info == 0;
  return info;
}

QString NgmKrigingSystem::debug(int level) const
{
  return QStringLiteral("Kriging system (moving)\n") + NgmAKrigingSystem::debug(level) +
         _system.debug(level);
}

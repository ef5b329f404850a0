#pragma once

#include "geos/matrix/NgmAKrigingSystem.h"
#include "geos/matrix/NgmLinearSystem.h"

class NgmTarget;

/// The kriging system of a moving neighborhood, solved for each target:
/// resetSystem(), buildSystem(), solve(), results.
///
/// Cost: O(E^3) per target. Nothing is allocated once the system has been as large before.
class NgmKrigingSystem : public NgmAKrigingSystem
{
public:
  /// One sample, one variable, one condition.
  NgmKrigingSystem();

  /// `simple`: without universality condition; `singleCondition`: one for all variables (rescaled
  /// cokriging), else one for each variable. `nDrifts` is the number of drift equations.
  NgmKrigingSystem(int nVariables, bool simple, bool singleCondition, int nDrifts);

  NgmKrigingSystem(const NgmKrigingSystem &other);
  NgmKrigingSystem &operator=(const NgmKrigingSystem &other);
  ~NgmKrigingSystem() override;

  QString debug(int level) const override;

  /// Solved, and no right-hand side built since.
  bool isReady() const override;

  const NgmMatrix &getLHSMatrix() const override;
  const NgmMatrix &getRHSMatrix() const override;

  /// The solution: weights, then Lagrange parameters.
  const NgmMatrix &getWeightsMatrix() const override;

  /// Another neighborhood: all elements zero, all equations valid, not solved. `point` becomes the
  /// reference point.
  void resetSystem(int nSamples, const NbgVector3D &point);

  /// Both sides from the samples of resetSystem() for a point target. The external drift arguments
  /// are those of the external drift model's terms: empty without one.
  void buildSystem(const NgmVModel &model, const NbdVariableDouble &x, const NbdVariableDouble &y,
                   const NbdVariableDouble &z, const QList<NbdAVariableNumeric *> &extDriftVars,
                   const NgmTarget &target, const QList<NbdAVariableNumeric *> &dataVars,
                   const QVector<double> &extDriftValuesAtTarget, NgmVModelCovaCache *cache);
  void buildSystem(const NgmVModel &model, const NgmKrigingSamples &samples,
                   const NgmTarget &target, NgmVModelCovaCache *cache);

  void buildSystemLHS(const NgmVModel &model, const NbdVariableDouble &x,
                      const NbdVariableDouble &y, const NbdVariableDouble &z,
                      const QList<NbdAVariableNumeric *> &extDriftVars,
                      const QList<NbdAVariableNumeric *> &dataVars);
  void buildSystemLHS(const NgmVModel &model, const NgmKrigingSamples &samples,
                      NgmVModelCovaCache *cache);

  void buildSystemRHS(const NgmVModel &model, const NbdVariableDouble &x,
                      const NbdVariableDouble &y, const NbdVariableDouble &z,
                      const NgmTarget &target, const QVector<double> &extDriftValuesAtTarget,
                      NgmVModelCovaCache *cache);
  void buildSystemRHS(const NgmVModel &model, const NgmKrigingSamples &samples,
                      const NgmTarget &target, NgmVModelCovaCache *cache);

  /// LAPACK's info: 0 when solved, above 0 when the system is singular.
  int solve();

protected:
  NgmMatrix &_getLHSMatrix() override;
  NgmMatrix &_getRHSMatrix() override;

private:
  void _invalidateEquations();

  NgmLinearSystem _system;
  bool _weightsReady;
};

#pragma once

#include "geos/matrix/NgmAKrigingSystem.h"
#include "geos/matrix/NgmLinearSystem.h"

class NbdVariableInt32;

/// The kriging system of a moving neighborhood, solved for each target:
/// resetSystem(), buildSystem() or one of its variants, solve(), results.
///
/// The samples come as variables or as plain arrays (NgmKrigingSamples). External drifts are one
/// variable, and one value at the target, for each external drift variable; empty (null) without.
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

  /// Both sides from the samples of resetSystem() for a point target.
  void buildSystem(const NgmVModel &model, const NbdVariableDouble &x, const NbdVariableDouble &y,
                   const NbdVariableDouble &z, const QList<NbdAVariableNumeric *> &extDriftVars,
                   const NgmTarget &target, const QList<NbdAVariableNumeric *> &dataVars,
                   const QVector<double> &extDriftValuesAtTarget, NgmVModelCovaCache *cache);
  void buildSystem(const NgmVModel &model, const NgmKrigingSamples &samples,
                   const NgmTarget &target, NgmVModelCovaCache *cache,
                   const double *extDriftValuesAtTarget = nullptr);

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
                      const NgmTarget &target, NgmVModelCovaCache *cache,
                      const double *extDriftValuesAtTarget = nullptr);

  /// Both sides for a block target.
  void buildSystemBlock(const NgmVModel &model, const NbdVariableDouble &x,
                        const NbdVariableDouble &y, const NbdVariableDouble &z,
                        const QList<NbdAVariableNumeric *> &extDriftVars, const NgmTarget &target,
                        const QList<NbdAVariableNumeric *> &dataVars,
                        const QVector<double> &extDriftValuesAtTarget, NgmVModelCovaCache *cache);
  void buildSystemBlock(const NgmVModel &model, const NgmKrigingSamples &samples,
                        const NgmTarget &target, NgmVModelCovaCache *cache,
                        const double *extDriftValuesAtTarget = nullptr);

  /// resetSystem() and both sides: the left-hand side from the model of the data, the right-hand
  /// side from the model of what is estimated, that of the data without the components that are
  /// filtered out. The target may be a block.
  void buildSystemFiltered(const NgmVModel &model, const NgmVModel &filteredModel,
                           const NbdVariableDouble &x, const NbdVariableDouble &y,
                           const NbdVariableDouble &z,
                           const QList<NbdAVariableNumeric *> &extDriftVars,
                           const NgmTarget &target, const QList<NbdAVariableNumeric *> &dataVars,
                           const QVector<double> &extDriftValuesAtTarget,
                           NgmVModelCovaCache *cache);
  void buildSystemFiltered(const NgmVModel &model, const NgmVModel &filteredModel,
                           const NgmKrigingSamples &samples, const NgmTarget &target,
                           NgmVModelCovaCache *cache,
                           const double *extDriftValuesAtTarget = nullptr);

  /// resetSystem() and both sides for data that come in groups (lines, surveys) with an unknown
  /// shift each, independent from group to group: the covariances of the shifts (V x V) are added
  /// between all valid data of one group. They are those of `corrections` for a group that it has,
  /// else the default ones. Data of an undefined group have no shift.
  void buildSystemMisties(const NgmVModel &model, const NgmMatrix &defaultCorrection,
                          const QMap<int, NgmMatrix> &corrections, const NbdVariableDouble &x,
                          const NbdVariableDouble &y, const NbdVariableDouble &z,
                          const NbdVariableInt32 &groups,
                          const QList<NbdAVariableNumeric *> &dataVars, const NgmTarget &target,
                          const QList<NbdAVariableNumeric *> &extDriftVars,
                          const QVector<double> &extDriftValuesAtTarget, NgmVModelCovaCache *cache);

  /// LAPACK's info: 0 when solved, above 0 when the system is singular. Conditions without any
  /// valid datum cannot be met: singular.
  int solve();

protected:
  bool _needsUpperOnly() const override { return true; }
  NgmMatrix &_getLHSMatrix() override;
  NgmMatrix &_getRHSMatrix() override;

private:
  void _buildRHS(const NgmVModel &model, const NgmKrigingSamples &samples, const NgmTarget &target,
                 bool asBlock, NgmVModelCovaCache *cache, const double *extDriftValuesAtTarget);
  void _addMisties(const NgmMatrix &defaultCorrection, const QMap<int, NgmMatrix> &corrections,
                   const NbdVariableInt32 &groups);
  void _addMistieOfPair(int s, int t, const NgmMatrix &correction);
  void _invalidateEquations();

  /// Solving needs the upper triangle; the lower one of the left-hand side is filled when it is
  /// asked for.
  mutable NgmLinearSystem _system;
  mutable bool _lowerIsFilled = true;
  bool _weightsReady;
};

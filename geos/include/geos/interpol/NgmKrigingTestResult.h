#pragma once

#include "geos/interpol/NgmAInterpolTestResult.h"
#include "geos/interpol/NgmKrigingTestResultMono.h"

class NbdVariableDouble;

/// What a kriging did at one target: neighbors with their weights, and for each estimated variable
/// the estimate, its quality and the system.
class NgmKrigingTestResult : public NgmAInterpolTestResult
{
public:
  NgmKrigingTestResult();
  ~NgmKrigingTestResult() override;

  void reset() override;

  /// True when a variable was estimated.
  bool hasResults() const override;

  /// Results by index of the estimated variable; an index outside fails.
  const NgmKrigingTestResultMono &getKrigingResults(int variable) const;
  NgmKrigingTestResultMono &getKrigingResultsRef(int variable);
  int getKrigingResultsNumber() const { return _results.size(); }

  /// Number of estimated variables; results that were there are lost.
  void setKrigingResultsNumber(int nVariables);

  /// Adds copies of the weights to the neighbors (set before), under Nbd::Role::WEIGHT. The list
  /// holds one variable per estimated and data variable, the data variable varying fastest, each
  /// with one value per neighbor; another number of values fails.
  void setWeights(const QList<NbdVariableDouble *> &weights);

  /// Name of the weights of data variable `variable` in the estimate of what `role` says: a role,
  /// or the name of the estimated variable when there are several.
  static QString getWeightName(const QString &role, const QString &variable);

  /// The results of each variable, without the target and the neighbors, which the text of the base
  /// class holds.
  QString toString(int level) const override;

private:
  QList<NgmKrigingTestResultMono> _results;
};

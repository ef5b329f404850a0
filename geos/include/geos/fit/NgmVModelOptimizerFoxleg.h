#pragma once

#include "geos/fit/NgmOptimizerFoxleg.h"

#include <memory>

class NgmOptimizerGoulard;
class NgmVModelOptimizable;

/// Fits a variogram model by turns: all free parameters move together (NgmOptimizerFoxleg), and
/// after each move the sills are fitted again to the new ranges and rotations
/// (NgmOptimizerGoulard), which keeps every matrix of sills positive semi-definite. Structures that
/// turn out negligible are discarded, as far as the initial model allows, and the rest fitted
/// again. The first fit is made from several automatic ranges, the best is kept.
class NgmVModelOptimizerFoxleg : public NgmOptimizerFoxleg
{
public:
  explicit NgmVModelOptimizerFoxleg(const QString &name = QStringLiteral("Hybrid Foxleg"));
  ~NgmVModelOptimizerFoxleg() override;

  /// Iterations of each fit of sills; 0 for the fit of sills alone.
  void setNbMaxIterGoulard(int n) { _nbMaxIterGoulard = n; }
  void setShowGoulard(bool show) { _showGoulard = show; }

protected:
  bool _doOptimization(int nbMaxIteration) override;
  void _patchParams(NgmOptParamList &params) override;

private:
  struct _Outcome
  {
    double score;
    bool isConverged;
    NgmOptParamList params;
  };

  bool _fitFromSeveralStarts(int nbMaxIteration);
  NgmOptParamList _withOtherRanges(const NgmOptParamList &params,
                                   const QVector<double> &factors) const;
  NgmVModelOptimizable &_vModel() const;
  QVector<NgmOptParamId> _ids(bool sills) const;
  void _prepareGoulard();
  bool _takeSillFit();
  bool _areSillsFree() const;
  bool _fitAll(int nbMaxIteration);

  int _nbMaxIterGoulard = 100;
  bool _showGoulard = false;
  std::unique_ptr<NgmOptimizerGoulard> _goulard;
};

#pragma once

#include "basic/base/NbbIDebuggable.h"
#include "geos/fit/NgmOptParamList.h"

#include <QVector>

/// What an optimizer works on: bounded parameters, a function of them that gives one value per
/// experience value, and the experience values that it should meet, with their weights.
class NgmAOptimizable : public NbbIDebuggable
{
public:
  ~NgmAOptimizable() override;

  /// The parameters, one per line.
  QString debug(int level) const override;

  /// Texts for the log, before and after an optimization.
  virtual QString startMessage(bool verbose) const;
  virtual QString endMessage(bool verbose) const;

  /// Fails when what was set does not fit together.
  virtual void checkConsistency() const = 0;

  /// The values to be compared with the experience, for these values of the parameters; the current
  /// parameters stay.
  virtual QVector<double> evaluateFunction(const NgmOptParamList &params, bool verbose) = 0;

  /// Makes these values the current ones. Fails when one is outside its bounds.
  void acceptParams(const NgmOptParamList &params);

  const QVector<double> &getExperience() const { return _experience; }

  /// Empty, or one per experience value.
  const QVector<double> &getWeights() const { return _weights; }

  // For optimizers.

  /// Checks, and makes experience and parameters anew.
  void _initialize();

  const NgmOptParamList &_getParamsRef() const { return _params; }
  int _getDataCount() const { return _experience.size(); }

  /// Number of the parameters with these ids, or of all when there are none.
  int _getParamsCount(const QVector<NgmOptParamId> &ids) const;

protected:
  NgmAOptimizable() = default;

  virtual void _initPreProcess() = 0;
  virtual void _initExperience() = 0;
  virtual void _initParams() = 0;
  virtual void _updateOptimizable(const NgmOptParamList &params) = 0;

  void _setExperience(const QVector<double> &values, const QVector<double> &weights);
  void _addToParams(const NgmOptParam &param) { _params.insert(param.getId(), param); }

  NgmOptParamList _params;

private:
  QVector<double> _experience;
  QVector<double> _weights;
};

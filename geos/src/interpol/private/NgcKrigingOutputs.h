#pragma once

#include <QList>
#include <QString>
#include <QVector>

#include <array>
#include <memory>
#include <vector>

class NbdAData;
class NbdAVariableNumeric;
class NbdDataTable;
class NbdVariableDouble;
class NgcAKriging;

/// The columns of a buffer of targets that a kriging writes, by interpolated variable; null where
/// nothing is asked for.
class NgcKrigingOutputs
{
public:
  using Columns = std::vector<double *>;

  /// In the order in which they are computed.
  enum Statistic {
    VAR_ESTIMATE,
    COVAR_Z1STARZSTAR,  ///< null for the first variable
    COVAR_ZZSTAR,
    CORREL_ZZSTAR,
    SLOPE_ZZSTAR,
    KRIG_EFFIC,
    SUM_W,
    SUM_POS_W,
    WEIGHT_OF_MEAN,
    LAGRANGE,
    NEIGH_NUMBER,
    NEIGH_MEAN_DIST,
    NEIGH_CODE_NUMBER,
    NEIGH_SEARCH_INDEX,
    SSDV,
    SPECIFIC_VOLUME,
    COEFF_OF_VARIATION,
    N_STATISTICS
  };

  explicit NgcKrigingOutputs(const NgcAKriging &kriging);
  ~NgcKrigingOutputs();

  /// Kriging variances are needed though no output holds them.
  void requireVariances() { _needsVariances = true; }

  /// Finds the columns; all that they hold for selected targets becomes undefined.
  void setBuffer(NbdAData &buffer);

  /// Estimates: null for excluded variables only.
  const Columns &getEstimates() const { return _estimates; }

  /// Where kriging variances are written, before they are converted: the indicators, else the
  /// variances, else the standard deviations; all null when nobody needs them.
  const Columns &getVariances() const { return _variances; }
  bool hasVariances() const { return _hasVariances; }
  bool hasIndicator() const { return _hasIndicator; }
  bool hasVariance() const { return _hasVariance; }
  bool hasStandardDeviation() const { return _hasStandardDeviation; }
  const Columns &getStandardDeviations() const { return _standardDeviations; }

  const Columns &get(Statistic statistic) const { return _statistics[statistic]; }
  bool has(Statistic statistic) const { return _present[statistic]; }

  /// Some statistic that comes from weights.
  bool needsWeights() const { return _needsWeights; }

  bool needsWeightsOfMean() const { return _present[WEIGHT_OF_MEAN]; }

  /// Something is told of the neighbors.
  bool describesNeighbors() const { return _describesNeighbors; }

  /// The variables behind the estimates and the kriging variances, excluded ones left out.
  const QList<NbdAVariableNumeric *> &getEstimateVariables() const { return _estimateVariables; }
  const QList<NbdAVariableNumeric *> &getVarianceVariables() const { return _varianceVariables; }

private:
  /// Variables that stand in for those which the data set lacks.
  class Placeholders;

  NbdVariableDouble *_find(const NbdDataTable &table, const QString &role, int variable) const;
  bool _findColumns(const NbdDataTable &table, const QString &role, Columns &columns) const;
  void _findEstimates(const NbdDataTable &table);
  void _findVariances(const NbdDataTable &table);
  void _findStatistics(const NbdDataTable &table);
  void _listColumns();

  const NgcAKriging &_kriging;
  int _nVariables;
  bool _needsVariances;
  int _nSamples = 0;

  Columns _estimates;
  Columns _variances;
  Columns _standardDeviations;
  bool _hasVariances = false;
  bool _hasIndicator = false;
  bool _hasVariance = false;
  bool _hasStandardDeviation = false;
  std::array<Columns, N_STATISTICS> _statistics;
  std::array<bool, N_STATISTICS> _present = {};
  bool _needsWeights = false;
  bool _describesNeighbors = false;
  Columns _all;

  QList<NbdAVariableNumeric *> _estimateVariables;
  QList<NbdAVariableNumeric *> _varianceVariables;
  std::unique_ptr<Placeholders> _fakeEstimates;
  std::unique_ptr<Placeholders> _fakeVariances;
};

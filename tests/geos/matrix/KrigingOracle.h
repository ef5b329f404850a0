#pragma once

#include "basic/base/NbbGlobal.h"
#include "geos/matrix/NgmKrigingSamples.h"
#include "geos/vmodel/NgmVModel.h"

#include <cmath>
#include <vector>

namespace testsupport {

/// x = inverse(a) b by Gaussian elimination with row exchanges, in long double; `a` is row by row.
/// The rows and columns are brought to one size first, for drifts have units of their own.
inline std::vector<std::vector<long double>> solveDense(std::vector<std::vector<long double>> a,
                                                        std::vector<std::vector<long double>> b)
{
  const std::size_t n = a.size();
  std::vector<long double> scale(n, 1.L);
  for (std::size_t i = 0; i < n; ++i) {
    long double largest = 0.L;
    for (std::size_t j = 0; j < n; ++j)
      largest = std::max(largest, std::abs(a[i][j]));
    scale[i] = 1.L / std::sqrt(largest);
  }
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < n; ++j)
      a[i][j] *= scale[i] * scale[j];
    for (long double &value : b[i])
      value *= scale[i];
  }
  for (std::size_t k = 0; k < n; ++k) {
    std::size_t pivot = k;
    for (std::size_t i = k; i < n; ++i)
      if (std::abs(a[i][k]) > std::abs(a[pivot][k]))
        pivot = i;
    std::swap(a[k], a[pivot]);
    std::swap(b[k], b[pivot]);
    for (std::size_t i = 0; i < n; ++i) {
      const long double factor = i == k ? 0.L : a[i][k] / a[k][k];
      for (std::size_t j = k; j < n && factor != 0.L; ++j)
        a[i][j] -= factor * a[k][j];
      for (std::size_t t = 0; t < b[i].size() && factor != 0.L; ++t)
        b[i][t] -= factor * b[k][t];
    }
  }
  for (std::size_t i = 0; i < n; ++i)
    for (long double &value : b[i])
      value *= scale[i] / a[i][i];
  return b;
}

/// Kriging by the book: the equations of the data that count, one by one, with the covariances of
/// each pair.
class KrigingOracle
{
public:
  enum Conditions { NONE, ONE_FOR_ALL, ONE_EACH };

  struct Drift
  {
    int variable;
    std::vector<double> atData;
    double atTarget;
    bool isPolynomial;
  };

  KrigingOracle(const NgmVModel &model, const NgmKrigingSamples &samples)
      : _model(model), _samples(samples), _nVariables(model.getNVariables())
  {
  }

  Conditions conditions = ONE_EACH;
  /// The model of what is estimated, when it is not that of the data.
  const NgmVModel *estimatedModel = nullptr;
  /// One point, or those of a block.
  std::vector<NbgVector3D> target;
  bool isBlock = false;
  std::vector<Drift> drifts;
  bool filterDrifts = false;
  /// Direct block kriging: r by variable and correlations of the variables at a sample.
  std::vector<double> r;
  NgmMatrix correlations;
  /// Shifts of groups of samples.
  std::vector<int> groups;
  NgmMatrix mistie;

  void solve()
  {
    _findData();
    const std::size_t nData = _data.size();
    _nRows = nData + _conditionVariables().size() + drifts.size();
    _lhs.assign(_nRows, std::vector<long double>(_nRows, 0.L));
    _rhs.assign(_nRows, std::vector<long double>(std::size_t(_nVariables), 0.L));
    for (std::size_t i = 0; i < nData; ++i) {
      for (std::size_t j = 0; j < nData; ++j)
        _lhs[i][j] = _dataCovariance(_data[i], _data[j]);
      for (int t = 0; t < _nVariables; ++t)
        _rhs[i][std::size_t(t)] = _targetCovariance(_data[i], t);
    }
    std::size_t row = nData;
    for (const int u : _conditionVariables()) {
      for (std::size_t i = 0; i < nData; ++i)
        _lhs[i][row] = _lhs[row][i] = u < 0 || _data[i].variable == u;
      for (int t = 0; t < _nVariables; ++t)
        _rhs[row][std::size_t(t)] = !filterDrifts && (u < 0 || t == u);
      ++row;
    }
    for (const Drift &drift : drifts) {
      for (std::size_t i = 0; i < nData; ++i)
        if (_data[i].variable == drift.variable)
          _lhs[i][row] = _lhs[row][i] = drift.atData[std::size_t(_data[i].sample)];
      const double factor = drift.isPolynomial && !r.empty() ? r[std::size_t(drift.variable)] : 1.;
      if (!filterDrifts)
        _rhs[row][std::size_t(drift.variable)] = drift.atTarget * factor;
      ++row;
    }
    _solution = solveDense(_lhs, _rhs);
  }

  double weight(int t, int s, int v) const
  {
    for (std::size_t i = 0; i < _data.size(); ++i)
      if (_data[i].sample == s && _data[i].variable == v)
        return double(_solution[i][std::size_t(t)]);
    return 0.;
  }

  double estimate(int t) const
  {
    long double sum = 0.L;
    for (std::size_t i = 0; i < _data.size(); ++i)
      sum += _solution[i][std::size_t(t)] * _samples.values[_data[i].variable][_data[i].sample];
    return double(sum);
  }

  /// sum W RHS over the data, or over all equations.
  double covarianceWithTarget(int t) const { return _product(t, _data.size()); }
  double explainedVariance(int t) const { return _product(t, _nRows); }

  double covarianceOfEstimates(int v, int t) const
  {
    long double sum = 0.L;
    for (std::size_t i = 0; i < _data.size(); ++i)
      for (std::size_t j = 0; j < _data.size(); ++j)
        sum += _solution[i][std::size_t(v)] * _lhs[i][j] * _solution[j][std::size_t(t)];
    return double(sum);
  }

  /// Of the condition of variable t; 0 when it has none.
  double lagrange(int t) const
  {
    std::size_t row = _data.size();
    for (const int u : _conditionVariables()) {
      if (u < 0 || u == t)
        return double(_solution[row][std::size_t(t)]);
      ++row;
    }
    return 0.;
  }

private:
  struct Datum
  {
    int sample;
    int variable;
  };

  void _findData()
  {
    _data.clear();
    for (int s = 0; s < _samples.n; ++s)
      for (int v = 0; v < _nVariables; ++v) {
        bool counts = NbbGlobal::isDefined(_samples.values[v][s]);
        for (const Drift &drift : drifts)
          counts =
              counts && (drift.variable != v || NbbGlobal::isDefined(drift.atData[std::size_t(s)]));
        if (counts)
          _data.push_back({s, v});
      }
  }

  std::vector<int> _conditionVariables() const
  {
    if (conditions == ONE_FOR_ALL)
      return {-1};
    std::vector<int> variables;
    for (int v = 0; v < _nVariables && conditions == ONE_EACH; ++v)
      for (const Datum &datum : _data)
        if (datum.variable == v) {
          variables.push_back(v);
          break;
        }
    return variables;
  }

  NbgVector3D _place(const Datum &datum) const
  {
    return {_samples.x[datum.sample], _samples.y[datum.sample], _samples.z[datum.sample]};
  }

  double _dataCovariance(const Datum &a, const Datum &b) const
  {
    double covariance = _model.calcCovaIJ(a.variable, b.variable, _place(b) - _place(a));
    if (a.sample != b.sample && (_place(b) - _place(a)).squaredNorm() < 1e-30)
      covariance -= _model.getNugget(a.variable, b.variable);
    if (!r.empty() && a.sample != b.sample)
      covariance *= r[std::size_t(a.variable)] * r[std::size_t(b.variable)];
    if (!r.empty() && a.sample == b.sample && a.variable != b.variable)
      covariance = correlations(a.variable, b.variable);
    const bool same = a.sample == b.sample && a.variable == b.variable;
    if (same && _samples.errorStDevs && _samples.errorStDevs[a.variable] &&
        NbbGlobal::isDefined(_samples.errorStDevs[a.variable][a.sample]))
      covariance += std::pow(_samples.errorStDevs[a.variable][a.sample], 2);
    if (!groups.empty() && groups[std::size_t(a.sample)] == groups[std::size_t(b.sample)])
      covariance += mistie(a.variable, b.variable);
    return covariance;
  }

  double _targetCovariance(const Datum &datum, int t) const
  {
    const NgmVModel &model = estimatedModel ? *estimatedModel : _model;
    double sum = 0.;
    for (const NbgVector3D &point : target) {
      const NbgVector3D h = point - _place(datum);
      sum += model.calcCovaIJ(datum.variable, t, h);
      if (isBlock && h.squaredNorm() < 1e-20)
        sum -= model.getNugget(datum.variable, t);
    }
    return sum / double(target.size()) * (r.empty() ? 1. : r[std::size_t(datum.variable)]);
  }

  double _product(int t, std::size_t nRows) const
  {
    long double sum = 0.L;
    for (std::size_t i = 0; i < nRows; ++i)
      sum += _solution[i][std::size_t(t)] * _rhs[i][std::size_t(t)];
    return double(sum);
  }

  const NgmVModel &_model;
  NgmKrigingSamples _samples;
  int _nVariables;
  std::vector<Datum> _data;
  std::size_t _nRows = 0;
  std::vector<std::vector<long double>> _lhs;
  std::vector<std::vector<long double>> _rhs;
  std::vector<std::vector<long double>> _solution;
};

}  // namespace testsupport

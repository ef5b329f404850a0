#pragma once

#include "KrigingOracle.h"
#include "KrigingTestSupport.h"
#include "geos/interpol/NgmBlock.h"
#include "geos/interpol/NgmTarget.h"
#include "geos/matrix/NgmAKrigingSystem.h"

#include <functional>

namespace testsupport {

inline const NbgVector3D targetPoint(430., 610.);

inline NgmBlock blockOf(double size)
{
  NgmBlock block(false);
  block.setSize(NbgVector3D(size, size, 0.));
  block.setDiscretizationPointsNumber(NbgIntVector3D(4, 4, 1));
  return block;
}

/// A smooth variable that is known everywhere, and one with a unit of its own.
inline double firstDrift(double x, double y)
{
  return std::sin(x / 300.) + y / 1000.;
}
inline double secondDrift(double x, double y)
{
  return 1e4 + x * y / 100.;
}

/// One kind of kriging: samples and settings, for the systems and for the oracle.
class Variant
{
public:
  explicit Variant(const NgmVModel &kriged, int nSamples = 14)
      : model(kriged),
        samples(randomSamples(501, nSamples, kriged.getNVariables())),
        target(targetPoint)
  {
    for (int s = 0; s < nSamples; ++s) {
      const std::size_t i = std::size_t(s);
      _drifts[0].push_back(firstDrift(samples.x()[i], samples.y()[i]));
      _drifts[1].push_back(secondDrift(samples.x()[i], samples.y()[i]));
    }
    _driftPointers = {_drifts[0].data(), _drifts[1].data()};
  }
  Variant(const Variant &) = delete;

  NgmKrigingSamples arrays() const
  {
    NgmKrigingSamples arrays = samples;
    if (external.getNDriftEquations() > 0)
      arrays.externalDrifts = _driftPointers.data();
    if (!_errorPointers.empty())
      arrays.errorStDevs = _errorPointers.data();
    return arrays;
  }

  const double *driftsAtTarget() const
  {
    return external.getNDriftEquations() > 0 ? _atTarget.data() : nullptr;
  }

  std::vector<double> &drift(int index) { return _drifts[std::size_t(index)]; }
  void setErrors(std::vector<std::vector<double>> errors)
  {
    _errors = std::move(errors);
    for (const std::vector<double> &variable : _errors)
      _errorPointers.push_back(variable.empty() ? nullptr : variable.data());
  }

  int nVariables() const { return model.getNVariables(); }
  int nDrifts() const { return polynomial.getNDriftEquations() + external.getNDriftEquations(); }

  void configure(NgmAKrigingSystem &system) const
  {
    system.setDriftModel(polynomial);
    system.setExtDriftModel(external);
    for (std::size_t v = 0; v < r.size(); ++v)
      system.setBlockCorrectionCoefficient(int(v), r[v]);
    if (!r.empty())
      system.setPointGaussianCorrelation(correlations);
    if (filterDrifts)
      system.setFilterDrifts(true);
  }

  /// The right-hand side is that of another model.
  const NgmVModel &estimatedModel() const { return filteredModel ? *filteredModel : model; }

  KrigingOracle oracle() const
  {
    KrigingOracle oracle(model, arrays());
    oracle.conditions = simple            ? KrigingOracle::NONE
                        : singleCondition ? KrigingOracle::ONE_FOR_ALL
                                          : KrigingOracle::ONE_EACH;
    oracle.estimatedModel = filteredModel;
    oracle.isBlock = target.isBlock();
    if (target.isBlock()) {
      QVector<NbgVector3D> points;
      target.getDiscretizationPoints(points);
      oracle.target.assign(points.begin(), points.end());
    } else {
      oracle.target = {target.getCenter()};
    }
    oracle.filterDrifts = filterDrifts;
    oracle.r = r;
    oracle.correlations = correlations;
    for (int k = 0; k < polynomial.getNDriftEquations(); ++k)
      oracle.drifts.push_back(_polynomialDrift(k));
    for (int k = 0; k < external.getNDriftEquations(); ++k) {
      const int v = external.getVariable(k);
      const int index = external.getDriftIndices(v).at(k);
      oracle.drifts.push_back(
          {v, _drifts[std::size_t(index)], _atTarget[std::size_t(index)], false});
    }
    oracle.solve();
    return oracle;
  }

  NgmVModel model;
  Samples samples;
  NgmTarget target;
  /// Variance of the target, of the size of the covariances.
  double c00 = 10.;
  bool simple = false;
  bool singleCondition = false;
  bool filterDrifts = false;
  const NgmVModel *filteredModel = nullptr;
  NgmDriftModel polynomial;
  NgmExtDriftModel external;
  std::vector<double> r;
  NgmMatrix correlations;

private:
  /// The monomials of addDrifts(v, 2, true, true, false), relative to nothing: a drift of the
  /// second degree is the same set of functions about any centre.
  KrigingOracle::Drift _polynomialDrift(int k) const
  {
    const std::function<double(double, double)> monomials[] = {
        [](double x, double) { return x; }, [](double x, double) { return x * x; },
        [](double, double y) { return y; }, [](double, double y) { return y * y; },
        [](double x, double y) { return x * y; }};
    const bool linear = polynomial.getMaximumPolynomialDegree() == 1;
    const auto &monomial = monomials[linear ? 2 * (k % 2) : k % 5];
    KrigingOracle::Drift drift = {polynomial.getVariable(k), {}, 0., true};
    // In the unit of 1000, for the sake of the elimination.
    for (int s = 0; s < samples.n(); ++s)
      drift.atData.push_back(monomial(samples.x()[std::size_t(s)] / 1000. - 0.5,
                                      samples.y()[std::size_t(s)] / 1000. - 0.5));
    const NbgVector3D &centre = target.getCenter();
    drift.atTarget = monomial(centre.x() / 1000. - 0.5, centre.y() / 1000. - 0.5);
    if (target.isBlock() && !linear && (k % 5 == 1 || k % 5 == 3))
      drift.atTarget += std::pow(target.getBlock().getSize().x() / 1000., 2) / 12.;
    return drift;
  }

  std::vector<double> _drifts[2];
  std::vector<const double *> _driftPointers;
  std::vector<double> _atTarget = {firstDrift(targetPoint.x(), targetPoint.y()),
                                   secondDrift(targetPoint.x(), targetPoint.y())};
  std::vector<std::vector<double>> _errors;
  std::vector<const double *> _errorPointers;
};

}  // namespace testsupport

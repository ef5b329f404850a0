#include "geos/algo/NgmNelderMead.h"

#include "basic/error/NbeProgrammingError.h"

#include <QString>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double REFLECTION = -1.;
constexpr double EXPANSION = 2.;
constexpr double CONTRACTION = 0.5;
constexpr int EVALUATIONS_PER_VARIABLE = 200;

}  // namespace

double NgmNelderMead::_evaluate(const Function &function, const std::vector<double> &point)
{
  ++_nEvaluations;
  const double value = function(point);
  return std::isnan(value) ? std::numeric_limits<double>::infinity() : value;
}

double NgmNelderMead::minimize(const Function &function, double step, std::vector<double> &point)
{
  if (point.empty() || !(step > 0.))
    throw NbeProgrammingError(
        QStringLiteral("NgmNelderMead::minimize: a start and a positive step are required"));
  _nEvaluations = 0;
  _Vertex best{point, _evaluate(function, point)};
  for (int run = 0; run <= _nbRestarts; ++run) {
    const double before = best.value;
    _converged = _runSimplex(function, step, best);
    if (!_converged || (run > 0 && before - best.value <= _tolerance * std::fabs(best.value)))
      break;
  }
  point = best.point;
  return best.value;
}

/// centre + factor * (worst - centre).
NgmNelderMead::_Vertex NgmNelderMead::_pointAt(const Function &function,
                                               const std::vector<double> &centre,
                                               const _Vertex &worst, double factor)
{
  _Vertex vertex{centre, 0.};
  for (std::size_t i = 0; i < centre.size(); ++i)
    vertex.point[i] += factor * (worst.point[i] - centre[i]);
  vertex.value = _evaluate(function, vertex.point);
  return vertex;
}

void NgmNelderMead::_shrink(const Function &function, std::vector<_Vertex> &simplex)
{
  for (std::size_t v = 1; v < simplex.size(); ++v) {
    for (std::size_t i = 0; i < simplex[v].point.size(); ++i)
      simplex[v].point[i] = 0.5 * (simplex[v].point[i] + simplex[0].point[i]);
    simplex[v].value = _evaluate(function, simplex[v].point);
  }
}

bool NgmNelderMead::_runSimplex(const Function &function, double step, _Vertex &best)
{
  const std::size_t n = best.point.size();
  const int maximum =
      _nbMaxEvaluations > 0 ? _nbMaxEvaluations : _nEvaluations + EVALUATIONS_PER_VARIABLE * int(n);
  std::vector<_Vertex> simplex(n + 1, best);
  for (std::size_t i = 0; i < n; ++i) {
    simplex[i + 1].point[i] += step;
    simplex[i + 1].value = _evaluate(function, simplex[i + 1].point);
  }
  const auto isLower = [](const _Vertex &a, const _Vertex &b) { return a.value < b.value; };
  std::vector<double> centre(n);
  for (;;) {
    std::stable_sort(simplex.begin(), simplex.end(), isLower);
    best = simplex.front();
    const double spread = simplex.back().value - best.value;
    if (spread <= _tolerance * std::max(std::fabs(best.value), 1e-30))
      return true;
    if (_nEvaluations >= maximum)
      return false;

    std::fill(centre.begin(), centre.end(), 0.);
    for (std::size_t v = 0; v < n; ++v) {
      for (std::size_t i = 0; i < n; ++i)
        centre[i] += simplex[v].point[i] / double(n);
    }
    _Vertex &worst = simplex.back();
    const _Vertex reflected = _pointAt(function, centre, worst, REFLECTION);
    if (reflected.value < best.value) {
      const _Vertex expanded = _pointAt(function, centre, reflected, EXPANSION);
      worst = expanded.value < reflected.value ? expanded : reflected;
    } else if (reflected.value < simplex[n - 1].value) {
      worst = reflected;
    } else {
      if (reflected.value < worst.value)
        worst = reflected;
      const _Vertex contracted = _pointAt(function, centre, worst, CONTRACTION);
      if (contracted.value < worst.value)
        worst = contracted;
      else
        _shrink(function, simplex);
    }
  }
}

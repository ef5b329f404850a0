#include "stats/private/NgcGridPairs.h"

#include "geos/matrix/NgmFourierTransform.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

using Complex = std::complex<double>;

constexpr int LANES = 4;

/// Sums along a row of nodes; lanes leave the compiler free to use vectors.
struct RowSums
{
  double nPairs[LANES] = {};
  double sums[LANES] = {};

  void addNode(int lane, double both, double da, double db)
  {
    nPairs[lane] += both;
    sums[lane] += both * da * db;
  }

  void addRow(int n, std::size_t tail, std::size_t head, const double *indicator, const double *a,
              const double *b)
  {
    int k = 0;
    for (; k + LANES <= n; k += LANES) {
      for (int lane = 0; lane < LANES; ++lane) {
        const std::size_t t = tail + k + lane, h = head + k + lane;
        addNode(lane, indicator[t] * indicator[h], a[h] - a[t], b[h] - b[t]);
      }
    }
    for (; k < n; ++k) {
      const std::size_t t = tail + k, h = head + k;
      addNode(0, indicator[t] * indicator[h], a[h] - a[t], b[h] - b[t]);
    }
  }
};

double total(const double *lanes)
{
  return (lanes[0] + lanes[1]) + (lanes[2] + lanes[3]);
}

/// Takes the mean of the defined nodes away.
void center(const std::vector<double> &indicator, std::vector<double> &values)
{
  double sum = 0., n = 0.;
  for (std::size_t i = 0; i < values.size(); ++i) {
    sum += indicator[i] * values[i];
    n += indicator[i];
  }
  const double mean = n > 0. ? sum / n : 0.;
  for (std::size_t i = 0; i < values.size(); ++i)
    values[i] = indicator[i] * (values[i] - mean);
}

double realProduct(const Complex &a, const Complex &b)
{
  return a.real() * b.real() + a.imag() * b.imag();
}

}  // namespace

// Axes of one node go first, so that rows along the last axis are long.
NgcGridPairs::NgcGridPairs(const NbgIntVector3D &nodes,
                           const std::vector<NbgIntVector3D> &increments)
    : _increments(increments)
{
  int order[3] = {0, 1, 2};
  std::stable_partition(order, order + 3, [&](int axis) { return nodes[axis] == 1; });
  for (int axis = 0; axis < 3; ++axis)
    _nodes[axis] = nodes[order[axis]];
  for (std::size_t i = 0; i < increments.size(); ++i) {
    for (int axis = 0; axis < 3; ++axis)
      _increments[i][axis] = increments[i][order[axis]];
  }
}

NgcGridPairs::~NgcGridPairs() = default;

void NgcGridPairs::setVariables(const double *a, const double *b)
{
  const std::size_t n = std::size_t(_nodes[0]) * _nodes[1] * _nodes[2];
  _isSimple = a == b;
  _indicator.resize(n);
  _a.resize(n);
  _b.resize(n);
  for (std::size_t i = 0; i < n; ++i) {
    const bool isDefined = !std::isnan(a[i]) && !std::isnan(b[i]);
    _indicator[i] = isDefined ? 1. : 0.;
    _a[i] = isDefined ? a[i] : 0.;
    _b[i] = isDefined ? b[i] : 0.;
  }
  center(_indicator, _a);
  center(_indicator, _b);
}

void NgcGridPairs::sumDirect(int increment, double &nPairs, double &sum) const
{
  const NbgIntVector3D &h = _increments[increment];
  int first[3], count[3];
  for (int axis = 0; axis < 3; ++axis) {
    first[axis] = std::max(0, -h[axis]);
    count[axis] = std::max(0, _nodes[axis] - std::abs(h[axis]));
  }
  const std::ptrdiff_t offset =
      h.z() + std::ptrdiff_t(_nodes[2]) * (h.y() + std::ptrdiff_t(_nodes[1]) * h.x());
  RowSums sums;
  for (int i = first[0]; i < first[0] + count[0]; ++i) {
    for (int j = first[1]; j < first[1] + count[1]; ++j) {
      const std::size_t tail = first[2] + std::size_t(_nodes[2]) * (j + std::size_t(_nodes[1]) * i);
      sums.addRow(count[2], tail, tail + offset, _indicator.data(), _a.data(), _b.data());
    }
  }
  nPairs = total(sums.nPairs);
  sum = 0.5 * total(sums.sums);
}

// All correlations are even functions: their spectra are real.
void NgcGridPairs::sumByFourier(double *nPairs, double *sums)
{
  _makePlan();
  _Spectrum &indicator = _spectra[0];
  _Spectrum &result = _spectra[1];
  _Spectrum &work = _spectra[2];
  _transformForward(_indicator, nullptr, indicator);
  _transformForward(_a, _b.data(), result);
  for (std::size_t f = 0; f < result.size(); ++f)
    result[f] = realProduct(indicator[f], result[f]);
  for (Complex &value : indicator)
    value = realProduct(value, value);
  _transformBackward(indicator, nPairs);
  for (std::size_t i = 0; i < _increments.size(); ++i)
    nPairs[i] = std::round(nPairs[i]);

  // The indicator's spectrum is of no more use.
  _transformForward(_a, nullptr, work);
  if (!_isSimple)
    _transformForward(_b, nullptr, indicator);
  const _Spectrum &second = _isSimple ? work : indicator;
  for (std::size_t f = 0; f < result.size(); ++f)
    result[f] -= realProduct(work[f], second[f]);
  _transformBackward(result, sums);
  for (std::size_t i = 0; i < _increments.size(); ++i) {
    if (nPairs[i] == 0.)
      sums[i] = 0.;
  }
}

// As many more nodes along each axis as an increment reaches keep pairs from wrapping around.
void NgcGridPairs::_makePlan()
{
  if (_transform)
    return;
  std::vector<int> sizes;
  for (int axis = 0; axis < 3; ++axis) {
    int reach = 0;
    for (const NbgIntVector3D &h : _increments)
      reach = std::max(reach, std::min(std::abs(h[axis]), _nodes[axis] - 1));
    _planNodes[axis] = NgmFourierTransform::getFastSize(_nodes[axis] + reach);
    if (_planNodes[axis] > 1 || axis == 2)
      sizes.push_back(_planNodes[axis]);
  }
  _transform = std::make_unique<NgmFourierTransform>(sizes);
  _plan.resize(_transform->getNValues());
  for (_Spectrum &spectrum : _spectra)
    spectrum.resize(_transform->getNFrequencies());
}

void NgcGridPairs::_transformForward(const std::vector<double> &values, const double *factors,
                                     _Spectrum &spectrum)
{
  std::fill(_plan.begin(), _plan.end(), 0.);
  std::size_t from = 0;
  for (int i = 0; i < _nodes[0]; ++i) {
    for (int j = 0; j < _nodes[1]; ++j) {
      double *row = _plan.data() + _planPosition(i, j, 0);
      for (int k = 0; k < _nodes[2]; ++k, ++from)
        row[k] = factors ? values[from] * factors[from] : values[from];
    }
  }
  _transform->forward(_plan.data(), spectrum.data());
}

void NgcGridPairs::_transformBackward(_Spectrum &spectrum, double *values)
{
  _transform->backward(spectrum.data(), _plan.data());
  for (std::size_t increment = 0; increment < _increments.size(); ++increment) {
    const NbgIntVector3D &h = _increments[increment];
    int node[3];
    bool isInside = true;
    for (int axis = 0; axis < 3; ++axis) {
      isInside = isInside && std::abs(h[axis]) < _nodes[axis];
      node[axis] = h[axis] < 0 ? h[axis] + _planNodes[axis] : h[axis];
    }
    values[increment] = isInside ? _plan[_planPosition(node[0], node[1], node[2])] : 0.;
  }
}

std::size_t NgcGridPairs::_planPosition(int i, int j, int k) const
{
  return k + std::size_t(_planNodes[2]) * (j + std::size_t(_planNodes[1]) * i);
}

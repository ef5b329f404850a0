#pragma once

#include "basic/geom/NbgIntVector3D.h"
#include "geos/matrix/NgmAlignedAllocator.h"

#include <complex>
#include <memory>
#include <vector>

class NgmFourierTransform;

/// The pairs of nodes of a block of a grid that are given increments apart: their number and the
/// sum of half the products of increments of two variables.
///
/// Formula:  with I = 1 where both variables are defined and 0 elsewhere, for the increment h
///           N(h) = sum_x I(x) I(x + h)
///           V(h) = sum_x I(x) I(x + h) (a(x + h) - a(x)) (b(x + h) - b(x)) / 2
///           and from correlations, with A = I a, B = I b, C = I a b:
///           V(h) = (I * C + C * I - A * B - B * A)(h) / 2
/// Values are centered first, which changes no increment but keeps the digits of the second form.
class NgcGridPairs
{
public:
  /// `nodes` along the axes, the third fastest. An increment that is longer than the block has no
  /// pairs.
  NgcGridPairs(const NbgIntVector3D &nodes, const std::vector<NbgIntVector3D> &increments);
  ~NgcGridPairs();

  /// One value per node; what is not defined is not a number.
  void setVariables(const double *a, const double *b);

  /// The sums of one increment, node by node.
  void sumDirect(int increment, double &nPairs, double &sum) const;

  /// The sums of all increments at once, one value per increment.
  void sumByFourier(double *nPairs, double *sums);

private:
  template <class T>
  using _Aligned = std::vector<T, NgmAlignedAllocator<T>>;
  using _Spectrum = _Aligned<std::complex<double>>;

  void _makePlan();
  void _transformForward(const std::vector<double> &values, const double *factors,
                         _Spectrum &spectrum);
  void _transformBackward(_Spectrum &spectrum, double *values);
  std::size_t _planPosition(int i, int j, int k) const;

  int _nodes[3];  // axes of one node first
  std::vector<NbgIntVector3D> _increments;
  bool _isSimple = true;
  std::vector<double> _indicator;
  std::vector<double> _a;
  std::vector<double> _b;

  // Of the Fourier route; made on first use.
  std::unique_ptr<NgmFourierTransform> _transform;
  int _planNodes[3] = {1, 1, 1};
  _Aligned<double> _plan;
  _Spectrum _spectra[3];
};

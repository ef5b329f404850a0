#pragma once

#include <complex>
#include <memory>
#include <vector>

/// Discrete Fourier transform of real arrays of one to several dimensions, and back.
///
/// Formula:  F(k) = sum_x f(x) exp(-2 pi i sum_a k_a x_a / n_a)
/// Shape:    f has n_0 n_1 ... values, the last dimension fastest. F is stored for the first
///           n / 2 + 1 frequencies of the last dimension; the others are conjugates of these.
/// Scale:    backward(forward(f)) = f
/// Threads:  one object may be used by several threads, each on its own arrays
/// Bits:     do not depend on the number of threads; arrays that are 64-byte aligned
///           (NgmAlignedAllocator) keep them from depending on the place in memory
class NgmFourierTransform
{
public:
  /// Sizes of at least 1; anything else, or no size at all, is a programming error.
  explicit NgmFourierTransform(const std::vector<int> &sizes);
  ~NgmFourierTransform();
  NgmFourierTransform(const NgmFourierTransform &) = delete;
  NgmFourierTransform &operator=(const NgmFourierTransform &) = delete;

  /// Number of values of f, and of F.
  std::size_t getNValues() const { return _nValues; }
  std::size_t getNFrequencies() const { return _nFrequencies; }

  void forward(const double *values, std::complex<double> *frequencies) const;

  /// What `frequencies` holds is lost.
  void backward(std::complex<double> *frequencies, double *values) const;

  /// The smallest size of at least `n` whose transform is fast: a product of 2, 3, 5 and 7.
  static int getFastSize(int n);

private:
  struct Plan;

  std::unique_ptr<Plan> _plan;
  std::size_t _nValues;
  std::size_t _nFrequencies;
};

#pragma once

#include "geos/stats/NgaVarioSum.h"

#include <vector>

class NgmVariogramExp;

/// Which terms of a pair the requested curves need.
struct NgcVarioTerms
{
  bool variogram = false;  ///< any variogram curve
  bool gamma = false;
  bool madogram = false;
  bool rodogram = false;
  bool pairwise = false;
  bool means = false;  ///< of heads and tails, for variograms
  bool covariance = false;

  explicit NgcVarioTerms(const NgmVariogramExp &request);
  bool isGammaOnly() const { return !(madogram || rodogram || pairwise || means); }
};

/// Pairs of samples that a direction keeps, one array per field: tail and head (positions in the
/// arrays of values), distance, lags and whether the pair goes along the direction.
struct NgcVarioPairs
{
  explicit NgcVarioPairs(int capacity);

  int n = 0;
  std::vector<int> tail;
  std::vector<int> head;
  std::vector<double> distance;
  std::vector<int> lagMin;
  std::vector<int> lagMax;
  std::vector<unsigned char> positive;
};

/// Sums of one direction and pair of variables, as one record per lag so that a pair touches one
/// place. Undefined values are not a number, and so is what is made of them.
class NgcVarioAccumulator
{
public:
  /// A record holds the sums in the order of NgaVarioSum::Array, then the number of pairs.
  static constexpr int STRIDE = 16;
  static constexpr int N_PAIRS = NgaVarioSum::N_ARRAYS;
  static_assert(N_PAIRS < STRIDE);

  explicit NgcVarioAccumulator(int nLags) : _records(std::size_t(nLags) * STRIDE, 0.) {}

  /// The variogram of variables a and b. `weights` may be null.
  void addVariogram(const NgcVarioTerms &terms, const NgcVarioPairs &pairs, const double *a,
                    const double *b, const double *weights);

  /// The covariance: 2N + 1 records, the first variable at the head and the second at the tail on
  /// the positive side, exchanged on the other.
  void addCovariance(const NgcVarioPairs &pairs, const double *a, const double *b,
                     const double *weights);

  /// Adds the records to `sum` and starts again from 0.
  void flushInto(NgaVarioSum &sum);

private:
  void _addGamma(const NgcVarioPairs &pairs, const double *a, const double *b,
                 const double *weights);
  void _addHalf(int lagMin, int lagMax, double d, double weight, double head, double tail);

  std::vector<double> _records;
};

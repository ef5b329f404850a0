#pragma once

#include "stats/private/NgcVarioSearch.h"
#include "stats/private/NgwAPairwise.h"

#include <vector>

class NbdAData;
class NgcPairwiseSamples;
class NgcVariogram;

/// Worker of NgcVariogram.
class NgwVariogram : public NgwAPairwise
{
public:
  NgwVariogram(NgwThreadPool *pool, NgcVariogram &calculator);

  /// What a calculator accumulates.
  static NgcVarioTask makeTask(const NgcVariogram &calculator);
  static std::vector<const NgmPairsSelectorDirection *> directionsOf(
      const NgcVariogram &calculator);

  /// A search without samples, for the sums of a calculator.
  static NgaVarioSumList makeSums(const NgcVariogram &calculator);

protected:
  void _process(const NgdDataDoubleBuffer &buffers) override;

private:
  void _checkBuffers(const NbdAData &first, const NbdAData &second) const;
  std::vector<unsigned char> _readSamples(const NgcPairwiseSamples &all,
                                          NgcVarioSamples &samples) const;

  NgcVariogram &_calculator;
  NgcVarioTask _task;
  std::vector<bool> _isExclusive;
  std::vector<NgmVariogramCloud> _clouds;
  std::vector<double> _means;
};

#pragma once

#include "geos/base/NgwAThread.h"
#include "geos/stats/NgaVarioSum.h"

#include <vector>

class NbdDataLines;
class NgcVariogram1D;

/// The valid samples of a line, one array per field. Undefined values are not a number.
struct NgcLineSamples
{
  std::vector<double> positions;
  std::vector<double> weights;              ///< empty when all weigh 1
  std::vector<std::vector<double>> values;  ///< one array per variable

  int count() const { return int(positions.size()); }
  void clear();
};

/// Sums up the pairs of one buffer of lines after another.
class NgwVariogram1D : public NgwAThread
{
public:
  NgwVariogram1D(NgwThreadPool *pool, NgcVariogram1D *calculator);

protected:
  void _run() override;

private:
  /// Columns of a buffer.
  struct Columns
  {
    std::vector<double> positions;
    std::vector<double> weights;  // of samples, with the mask; empty when there is neither
    std::vector<std::vector<double>> values;
  };

  void _readColumns(const NbdDataLines &buffer);
  void _readWeights(const NbdDataLines &buffer);
  void _selectSamples(int first, int last);
  void _addLine();
  void _addPairs(int tail, int nPairs);
  NgaVarioSumList _takeSums();
  NgaVarioSumList _statsOf(const NgaVarioSumList &sums) const;

  NgcVariogram1D *_calculator;
  double _lag;
  int _nLags;
  int _nVariables;
  Columns _columns;
  NgcLineSamples _samples;
  // Pairs of one sample with those behind it.
  std::vector<int> _heads;
  std::vector<int> _lags;
  std::vector<double> _distances;
  // One record per pair of variables and lag.
  std::vector<double> _records;
};

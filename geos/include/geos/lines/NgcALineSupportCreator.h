#pragma once

#include "geos/lines/NgcALineCalculator.h"

/// Base of the line calculators that make the samples of an output lines data set: each line of the
/// output gets new samples in place of its own.
class NgcALineSupportCreator : public NgcALineCalculator
{
public:
  ~NgcALineSupportCreator() override;

  void setOutputDataSet(const NgdADataSet &dataSet);

  /// An empty buffer, without lines, with the variables of the output data set; the caller owns it.
  NbdDataLines *getNewOutputLines(bool withCoordinates, bool withSampleNumber) const;

  /// Makes the lines of the buffer those of the output data set. Thread-safe.
  void saveLines(const NbdDataLines &lines);

protected:
  NgcALineSupportCreator();

  void _checkDatasets() override;

private:
  const NgdDataSetLines *_getOutputLines() const;
};

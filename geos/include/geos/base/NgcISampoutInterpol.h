#pragma once

class NgdADataSet;

/// A calculator that can tell every sample that it used for every target.
class NgcISampoutInterpol
{
public:
  virtual ~NgcISampoutInterpol() = default;

  /// The points that receive the rows: see NgdSampout.
  virtual void setSampoutDataSet(const NgdADataSet &dataSet) = 0;
};

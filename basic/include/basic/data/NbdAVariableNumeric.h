#pragma once

#include "basic/data/NbdAVariable.h"

#include <QVector>

class NbcStatBasic;

/// A variable whose values can be read and written as doubles, whatever their type. Undefined
/// values are D_FFFF on the way out; on the way in, undefined values and those out of the range of
/// the type become undefined (see nbdConvert()).
///
/// Statistics leave undefined values out; without any defined value they are D_FFFF. Those of a
/// multi-realization variable are of its current realization.
class NbdAVariableNumeric : public NbdAVariable
{
public:
  ~NbdAVariableNumeric() override;

  bool isNumeric() const override { return true; }

  virtual double getValue(int position) const = 0;
  virtual void setValue(int position, double value) = 0;

  /// n values from position `first` on; the range is not checked.
  virtual void getValuesAsDouble(int first, int n, double *out) const = 0;
  virtual void setValuesFromDouble(int first, int n, const double *in) = 0;

  virtual void appendValue(double value) = 0;
  using NbdAVariable::appendValue;

  /// Replaces all values; the variable takes their number.
  void setValues(const QVector<double> &values);
  void setAllValues(double value);

  /// Values of the realization at a rank; rank 0 is the only one of a plain variable.
  virtual double getRealizationValue(int rank, int position) const;
  virtual void setRealizationValue(int rank, int position, double value);

  double getMinValue() const;
  double getMaxValue() const;
  /// False, and both undefined, without any defined value.
  bool getMinMaxValues(double &minimum, double &maximum) const;
  /// Position of the first smallest (largest) value, -1 without any defined value.
  int getMinValueRank() const;
  int getMaxValueRank() const;

  /// 0 without any defined value.
  double computeSum() const;
  double getMeanValue() const;
  /// Population variance, about the mean.
  double getVarianceValue() const;
  double getStandardDeviationValue() const;

  NbcStatBasic getStatistics() const;

  /// Statistics in which a value counts with its weight. A weight that is undefined or not positive
  /// removes the value from the weighted results; the unweighted ones keep it. NbeProgrammingError
  /// when there is not one weight per value.
  NbcStatBasic getStatisticsWeighted(const NbdAVariableNumeric &weights) const;

  /// The different defined values, ascending.
  QVector<double> getUniqueValues() const;

  /// Neighbours of `value` in a variable of defined ascending values: the last position whose value
  /// is not above it and the first whose value is not below it; equal when the value is met, -1
  /// where there is none.
  void getLowerUpperIndices(double value, int &lower, int &upper) const;

protected:
  using NbdAVariable::NbdAVariable;
};

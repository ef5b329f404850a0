#pragma once

#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdSharedArray.h"

/// Realizations of a macro variable in single precision: one contiguous column per macro index.
class NbdVariableMulti : public NbdAVariableNumeric
{
public:
  explicit NbdVariableMulti(const NbdVariableDetails &details = NbdVariableDetails());
  /// NbeProgrammingError when the indices do not suit `info` or one comes twice.
  NbdVariableMulti(const NbdVariableDetails &details, const QList<NbdMacroIndex> &indices,
                   const NbdMacroIndexInfo &info);

  Nbd::EVariableType getVariableType() const override;
  std::unique_ptr<NbdAVariable> clone() const override;
  void acceptVisitor(NbdIVariableVisitor &visitor) const override;
  void acceptMutator(NbdIVariableMutator &mutator) override;

  bool isMultiRealizations() const override { return true; }
  int getNRealizations() const override { return int(_columns.size()); }
  QList<NbdMacroIndex> getRealizationIndices() const override { return _indices; }
  int getCurrentRealizationRank() const override { return _current; }
  void setCurrentRealizationRank(int rank) override;

  /// Realizations 1 ... n; the columns that exist keep their values, new ones are undefined.
  void setNRealizations(int n);

  double getRealizationValue(int rank, int position) const override;
  void setRealizationValue(int rank, int position, double value) override;

  /// The values of one sample in all realizations.
  QVector<double> getAllValues(int position) const;
  /// NbeProgrammingError when there is not one value per realization.
  void setAllValues(int position, const QVector<double> &values);
  using NbdAVariableNumeric::setAllValues;

  /// The column of a realization; see NbdAVariable_impl. The rank is not checked.
  const float *getArrayConst(int rank) const { return _columns[rank].getConst().data(); }
  float *getArray(int rank) { return _columns[rank].get().data(); }

  int getNValues() const override { return _nValues; }
  bool isUndefined(int position) const override;
  void setToUndefined(int position) override;
  int getNDefined() const override;
  double getValue(int position) const override;
  void setValue(int position, double value) override;
  void getValuesAsDouble(int first, int n, double *out) const override;
  void setValuesFromDouble(int first, int n, const double *in) override;
  /// Appends a sample: `value` in the current realization, undefined in the others.
  void appendValue(double value) override;
  using NbdAVariable::appendValue;
  QVariant getVariant(int position) const override;
  void setVariant(int position, const QVariant &value) override;
  void copyValuesFrom(const NbdAVariable &other, int otherFirst, int first, int n) override;
  void copySamplesFrom(const NbdAVariable &other, int otherFirst, int first, int n) override;
  std::vector<int> getSortedPositions(bool ascending) const override;

  void resizeAndFill(int n) override;
  void reserve(int n) override;
  void squeeze() override;
  void insertUndefinedValues(int position, int count) override;
  void removeValues(int first, int count) override;
  void compress(const unsigned char *keep) override;
  void extract(const int *positions, int n) override;
  void detachData() override;

protected:
  void _serialize(QDataStream &stream) const override;
  void _unserialize(QDataStream &stream, unsigned int version) override;

private:
  const std::vector<float> &_currentColumn() const;
  std::vector<float> &_currentColumn();

  QList<NbdMacroIndex> _indices;
  std::vector<NbdSharedArray<float>> _columns;
  int _nValues = 0;
  int _current = 0;
};

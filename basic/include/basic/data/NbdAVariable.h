#pragma once

#include "basic/base/NbbASerializable.h"
#include "basic/data/Nbd.h"
#include "basic/data/NbdMacroIndex.h"
#include "basic/data/NbdMacroIndexInfo.h"
#include "basic/data/NbdVariableDetails.h"

#include <QList>
#include <QString>
#include <QVariant>

#include <memory>
#include <vector>

class NbdIVariableMutator;
class NbdIVariableVisitor;

/// A column of values, one per sample, with its description and, when it is a realization of a
/// macro variable, its macro index.
///
/// Copies share their values until one of them is written. Positions count from 0; those of single
/// values are not checked. Values that were never set are undefined (true in a selection).
///
/// A multi-realization variable holds one column per macro index; the operations on single values,
/// and those that count or convert values, work on its current realization.
class NbdAVariable : public NbbASerializable
{
public:
  ~NbdAVariable() override;

  const QString &getName() const { return _details.getName(); }
  void setName(const QString &name) { _details.setName(name); }
  const NbdVariableDetails &getDetails() const { return _details; }
  void setDetails(const NbdVariableDetails &details) { _details = details; }

  virtual Nbd::EVariableType getVariableType() const = 0;

  /// The values are quantities, 0 or 1 in a selection; codes of categories are not.
  virtual bool isNumeric() const = 0;

  virtual std::unique_ptr<NbdAVariable> clone() const = 0;

  virtual void acceptVisitor(NbdIVariableVisitor &visitor) const = 0;
  virtual void acceptMutator(NbdIVariableMutator &mutator) = 0;

  // Values.

  virtual int getNValues() const = 0;
  virtual bool isUndefined(int position) const = 0;
  virtual void setToUndefined(int position) = 0;
  virtual int getNDefined() const = 0;
  int getNUndefined() const { return getNValues() - getNDefined(); }
  bool hasUndefined() const { return getNDefined() != getNValues(); }

  /// The value; an invalid variant when it is undefined.
  virtual QVariant getVariant(int position) const = 0;
  /// An invalid variant, or one without conversion to the type of the variable, sets the value
  /// undefined.
  virtual void setVariant(int position, const QVariant &value) = 0;

  /// Text for people, in the C locale; NbbGlobal::STR_NA when the value is undefined.
  virtual QString getText(int position) const;

  /// Appends one value; see setVariant().
  void appendValue(const QVariant &value);

  /// Copies n values from position `otherFirst` of `other` to position `first`, converted to the
  /// type of this variable (see nbdConvert(); names of categories against texts). `other` may be
  /// this variable. NbeProgrammingError when a range exceeds its variable or when points or colours
  /// meet another type.
  virtual void copyValuesFrom(const NbdAVariable &other, int otherFirst, int first, int n) = 0;

  /// The same for all realizations: those of `other` are matched by their macro index.
  virtual void copySamplesFrom(const NbdAVariable &other, int otherFirst, int first, int n);

  /// Positions of the values in ascending (descending) order, stable, undefined values last.
  virtual std::vector<int> getSortedPositions(bool ascending) const = 0;

  // Number of values.

  /// New values are undefined (true in a selection).
  virtual void resizeAndFill(int n) = 0;
  virtual void reserve(int n) = 0;
  /// Gives back the memory beyond the values.
  virtual void squeeze() = 0;
  void clear() { resizeAndFill(0); }
  /// Drops the values from position n on.
  void shrink(int n);
  virtual void insertUndefinedValues(int position, int count) = 0;
  void removeValue(int position) { removeValues(position, 1); }
  virtual void removeValues(int first, int count) = 0;
  /// Keeps the values whose flag, one per value, is not 0.
  virtual void compress(const unsigned char *keep) = 0;
  /// Value k becomes what value ranks[k] was; `ranks` has one element per value.
  void permute(const int *ranks) { extract(ranks, getNValues()); }
  /// Keeps the values at n positions, in their order; positions may come again.
  virtual void extract(const int *positions, int n) = 0;
  /// Makes the values independent of all copies at once.
  virtual void detachData() = 0;

  // Macro variables.

  /// Marks a plain variable as a realization of a macro variable.
  void setMacroIndex(const NbdMacroIndexInfo &info, const NbdMacroIndex &index);
  const NbdMacroIndex &getMacroIndex() const { return _macroIndex; }
  const NbdMacroIndexInfo &getMacroIndexInfo() const { return _macroIndexInfo; }
  bool hasMacroIndex() const { return _macroIndex.isValid(); }

  virtual bool isMultiRealizations() const { return false; }
  virtual int getNRealizations() const { return 1; }

  /// Macro indices in order of rank; that of a plain variable is its own, invalid by default.
  virtual QList<NbdMacroIndex> getRealizationIndices() const;
  NbdMacroIndex getCurrentRealizationIndex() const;
  /// NbeProgrammingError when there is no such realization.
  void setCurrentRealizationIndex(const NbdMacroIndex &index);
  virtual int getCurrentRealizationRank() const { return 0; }
  /// NbeProgrammingError when there is no such realization.
  virtual void setCurrentRealizationRank(int rank);

protected:
  NbdAVariable() = default;
  explicit NbdAVariable(const NbdVariableDetails &details) : _details(details) {}
  NbdAVariable(const NbdAVariable &) = default;
  NbdAVariable &operator=(const NbdAVariable &) = default;

  /// NbeProgrammingError unless [first, first + count) is within the values.
  void _checkRange(int first, int count) const;
  static void _checkOtherRange(const NbdAVariable &other, int first, int count)
  {
    other._checkRange(first, count);
  }
  /// NbeProgrammingError for a negative size, NbeMemoryError beyond the range of int.
  static void _checkSize(qint64 size);
  [[noreturn]] static void _refuseConversion(const NbdAVariable &from, const NbdAVariable &to);

  void _setMacroIndexInfo(const NbdMacroIndexInfo &info) { _macroIndexInfo = info; }

  QList<unsigned int> _serializedVersions() const override;
  unsigned int _currentSerializedVersion() const override;
  bool _hasValidFirstVersion() const override { return true; }

  /// What all variables write before their values.
  struct Header
  {
    NbdVariableDetails details;
    NbdMacroIndexInfo macroIndexInfo;
    NbdMacroIndex macroIndex;
  };
  void _writeHeader(QDataStream &stream) const;
  Header _readHeader(QDataStream &stream) const;
  void _setHeader(const Header &header);

private:
  NbdVariableDetails _details;
  NbdMacroIndexInfo _macroIndexInfo;
  NbdMacroIndex _macroIndex;
};

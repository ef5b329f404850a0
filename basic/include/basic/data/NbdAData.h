#pragma once

#include "basic/base/NbbIDebuggable.h"
#include "basic/data/NbdDataTable.h"
#include "basic/geom/NbgVector3D.h"

#include <QList>
#include <QString>

#include <memory>
#include <vector>

class NbdAVariable;
class NbdAVariableNumeric;
class NbdDataSimpleIterator;
class NbdVariableInt64;
class NbdVariableSelection;
class NbgBox;

/// A block of samples in memory: a data table, the samples' locations and an optional selection.
/// Calculators take such buffers from an iterator, compute and give them back to the data set.
///
/// Samples are addressed by their position in the buffer, from 0. Points and lines hold selected
/// samples only; a grid buffer holds all its nodes and marks the selected ones.
class NbdAData : public NbbIDebuggable
{
public:
  ~NbdAData() override;

  NbdDataTable &getDataTable() { return _table; }
  const NbdDataTable &getDataTableConst() const { return _table; }

  virtual int getNSamples() const = 0;

  /// Number of coordinates that locate a sample: 0 to 3.
  int getNDimensions() const { return _nDimensions; }
  void setNDimensions(int nDimensions) { _nDimensions = nDimensions; }

  /// Location of a sample; components beyond the dimension are 0.
  virtual NbgVector3D getLocation(int position) const = 0;

  /// Coordinates of `n` samples, each array holding n values.
  virtual void getLocations(int first, int n, double *x, double *y, double *z) const = 0;

  /// Rank in the data set + 1, or I64_FFFF when it is not known.
  virtual qint64 getSampleNumber(int position) const;

  /// The samples that take part in results; null when all do.
  const NbdVariableSelection *getSelection() const { return _selection.get(); }

  /// Keeps a copy; its size must be the number of samples.
  void setSelection(const NbdVariableSelection &selection);
  void clearSelection();

  bool isSelected(int position) const;
  int getNSelected() const;

  /// Positions of the selected samples in ascending order (all positions without selection).
  /// Valid until the selection or the number of samples changes; threads may share a buffer that
  /// does not change.
  const std::vector<int> &getSelectedPositions() const;

  /// Lookups in the table; null when the role or the index does not exist.
  NbdAVariable *getVariable(const QString &role, int index) const;
  NbdAVariableNumeric *getVariableNumeric(const QString &role, int index) const;

  /// The sample numbers bound to the SN role, or null.
  NbdVariableInt64 *getVariableSN() const;

  /// Ranks, in the list of macro indices of each macro variable, that this buffer holds: the rank
  /// of the loop when macros are processed by piece, else [0].
  const QList<int> &getMacroRanks() const { return _macroRanks; }
  void setMacroRanks(const QList<int> &ranks) { _macroRanks = ranks; }

  /// Resizes every variable of the table; new values are undefined.
  virtual void setResizedTo(int nSamples);

  /// Walks the selected samples in order.
  NbdDataSimpleIterator createSimpleIterator() const;

  /// A new independent copy; the caller owns it.
  virtual NbdAData *makeCopy() const = 0;

  /// Extends `box` with the selected samples.
  virtual void updateBoundingBox(NbgBox &box) const;

  QString debug(int level) const override;
  virtual QString toString() const;

protected:
  NbdAData();
  NbdAData(const NbdAData &other);
  NbdAData &operator=(const NbdAData &other);

  /// To be called whenever the number of samples changes: samples that a selection does not know
  /// are selected.
  void _samplesChanged();

  /// To be called, before the number of samples changes, when samples come in between (they are
  /// selected) or one goes.
  void _insertIntoSelection(int position, int count);
  void _removeFromSelection(int position);

private:
  struct SelectedPositions;

  NbdDataTable _table;
  int _nDimensions = 3;
  std::unique_ptr<NbdVariableSelection> _selection;
  QList<int> _macroRanks = {0};
  /// Made on first use; replaced atomically.
  mutable std::shared_ptr<const SelectedPositions> _selectedPositions;
};

/// Walks positions of a buffer's selected samples: `while ((position = iterator.next()) >= 0)`.
class NbdDataSimpleIterator
{
public:
  explicit NbdDataSimpleIterator(const NbdAData &data);

  void toFront() { _cursor = 0; }
  bool hasNext() const { return _cursor < _positions->size(); }

  /// The next position, or -1 at the end.
  int next() { return hasNext() ? (*_positions)[_cursor++] : -1; }

private:
  const std::vector<int> *_positions;
  std::size_t _cursor = 0;
};

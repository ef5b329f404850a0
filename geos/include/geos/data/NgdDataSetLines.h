#pragma once

#include "basic/base/NbbCloneable.h"
#include "geos/data/NgdADataSet.h"
#include "geos/data/NgdBufferManagerLines.h"

class NbdDataLines;
class NbpIProviderObjectR;

/// A data set of lines such as boreholes: samples grouped by line.
class NgdDataSetLines : public NbbCloneable<NgdDataSetLines, NgdADataSet>
{
public:
  NgdDataSetLines();

  using NgdADataSet::setDataProvider;
  void setDataProvider(QSharedPointer<NbpIProviderR> provider) override;
  qint64 getNSamples() const override;
  void updateBoundingBox(NbgBox &box) const override;
  NgdBufferManagerLines *createBufferManager() const override;
  bool isLine() const override { return true; }
  bool mustBeUnique(const QString &role) const override;
  void saveFromBufferInParent(const NbdAData &buffer) const override;
  QString debug(int level) const override;

  using NgdADataSet::loadInBuffer;

  /// Loads the selected samples of whole lines, line after line.
  void loadInBuffer(const QList<int> &lineRanks, NbdDataLines &buffer) const;

  using NgdADataSet::saveFromBuffer;
  void saveFromBuffer(const NbdDataLines &buffer) const;

  int getNLines() const;

  /// Largest number of samples in one line.
  int getCountMaxPerLine() const;

  /// Whether samples are intervals along their line (cores).
  bool isDataSupportCore() const;

private:
  const NbpIProviderObjectR &_getLineProvider() const;
};

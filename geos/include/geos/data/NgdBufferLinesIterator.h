#pragma once

#include "basic/data/NbdDataLines.h"
#include "basic/interval/NbiIntervalIntSmallMoving.h"
#include "geos/data/NgdIBufferIterator.h"

#include <QList>

#include <memory>

class NgdBufferManagerLines;
class NgdDataSetLines;

/// Hands out groups of whole lines.
class NgdBufferLinesIterator final : public NgdIBufferIterator
{
public:
  /// Keeps a clone of the data set; `lineRanks` are the lines to visit.
  NgdBufferLinesIterator(const NgdDataSetLines &dataSet, const NgdBufferManagerLines &manager,
                         const QList<int> &lineRanks);
  ~NgdBufferLinesIterator() override;

  void toFront() override;
  bool hasNext() const override;
  NbdDataLines *next() override;
  void skipNext() override;

private:
  std::unique_ptr<NgdDataSetLines> _dataSet;
  bool _needCoordinates;
  bool _needSampleNumber;
  QList<int> _lineRanks;
  NbiIntervalIntSmallMoving _loop;
  NbiIntervalIntSmallMoving _lines;
};

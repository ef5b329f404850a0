#pragma once

#include "basic/data/NbdDataPoints.h"

#include <QList>
#include <QVector>

/// A buffer of whole lines (boreholes): their selected samples, line after line.
///
/// Whoever changes the number of samples through the operations of points tells with
/// setNSamplesPerLine() how the lines share them.
class NbdDataLines : public NbdDataPoints
{
public:
  /// One line of the buffer: its samples stand at positions first ... first + count - 1.
  struct Line
  {
    int rank = -1;  ///< rank of the line in the data set
    int first = 0;
    int count = 0;  ///< 0 for a line without selected sample
  };

  /// Walks the lines in buffer order.
  class Iterator
  {
  public:
    explicit Iterator(const NbdDataLines &lines) : _lines(&lines) {}
    void toFront() { _next = 0; }
    bool hasNext() const { return _next < _lines->getNLines(); }
    Line next() { return _lines->getLineRef(_next++); }

  private:
    const NbdDataLines *_lines;
    int _next = 0;
  };

  NbdDataLines();
  ~NbdDataLines() override;

  NbdDataLines *makeCopy() const override;

  int getNLines() const { return _lineRanks.size(); }

  /// Ranks, in the data set, of the buffer's lines.
  const QList<int> &getLineRanks() const { return _lineRanks; }

  /// The lines of the buffer and how many samples each has; resizes the table's variables.
  void setLines(const QList<int> &lineRanks, const QVector<int> &nSamplesPerLine);

  const QVector<int> &getNSamplesPerLine() const { return _nSamplesPerLine; }

  /// Changes how samples are shared between the lines; their sum must be the number of samples.
  void setNSamplesPerLine(const QVector<int> &nSamplesPerLine);

  /// The line at an index of the buffer.
  Line getLineRef(int index) const;

  Iterator getLinesIterator() const { return Iterator(*this); }

  /// Appends a sample with undefined values to the line at `index`; returns its position.
  int addSample(int index);
  void addSamples(int index, int count);

  /// Removes the sample at `position` from the buffer and from its line.
  void removeSample(int position);

private:
  void _setCounts(const QVector<int> &nSamplesPerLine);

  QList<int> _lineRanks;
  QVector<int> _nSamplesPerLine;
  QVector<int> _firstOfLine;
};

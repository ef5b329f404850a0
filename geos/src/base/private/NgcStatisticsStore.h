#pragma once

#include "basic/calc/NbcProportions.h"
#include "basic/calc/NbcStatBasic.h"
#include "basic/data/NbdMacroIndex.h"
#include "geos/base/NgaOrderedSum.h"
#include "geos/base/NgaProportionSum.h"
#include "geos/base/NgaStatSum.h"

#include <QList>
#include <QMap>
#include <QMutex>
#include <QStringList>

class NbdAData;
class NbdAVariableNumeric;
class NgcSelectedBlocks;
class NgdADataSet;
class NgdVariableDescriptor;

/// What statistics are of: a role, the index of a variable in it, and a macro index (invalid for a
/// plain variable).
struct NgcStatisticsKey
{
  QString role;
  int index = 0;
  NbdMacroIndex macro;

  bool operator<(const NgcStatisticsKey &other) const;
  bool operator==(const NgcStatisticsKey &other) const;
};

/// Running sums by key.
class NgcStatisticsSums : public NgaIAdditive
{
public:
  void doSum(const NgaIAdditive &other) override;
  NgcStatisticsSums *clone() const override { return new NgcStatisticsSums(*this); }

  QMap<NgcStatisticsKey, NgaStatSum> statistics;
  QMap<NgcStatisticsKey, NgaProportionSum> proportions;
};

/// The statistics and proportions that a calculator gathers of its variables.
class NgcStatisticsStore
{
public:
  bool perform = false;
  QStringList statisticsRoles;
  QStringList proportionRoles;

  /// Forgets the results and the sums.
  void clear();

  /// Makes the keys of the data set's variables. `nLoops` is how often each sample comes by, once
  /// per index of the macros that are processed by piece.
  void prepare(const NgdADataSet &dataSet, int nLoops);

  /// Adds the samples of a buffer; a negative rank stands for the next one. Thread-safe.
  void addBuffer(const NbdAData &buffer, qint64 rank);

  void finish();

  /// The results; null when there is none.
  const NbcStatBasic *findStatistics(const NgcStatisticsKey &key) const;
  const NbcProportions *findProportions(const NgcStatisticsKey &key) const;

private:
  /// A variable that is counted, and where to find it in a buffer.
  struct Source
  {
    NgcStatisticsKey key;
    QString name;
    bool isMulti;  // one column per macro index in a single variable
    int loopRank;  // loop in which it is counted, -1 for any
    bool isNumeric;
    bool isCategorical;
  };

  void _addSources(const NgdVariableDescriptor &descriptor, const QString &role, int index,
                   int nLoops);
  void _addSource(const Source &source);
  void _addVariable(const Source &source, const NbdAData &buffer, const NgcSelectedBlocks &blocks,
                    NgcStatisticsSums &sums) const;
  static NbdAVariableNumeric &_findVariable(const Source &source, const NbdAData &buffer);

  QList<Source> _sources;
  QMap<QString, NgcStatisticsKey> _keyOfName;  // keys without macro index
  QMap<NgcStatisticsKey, NbcStatBasic> _statistics;
  QMap<NgcStatisticsKey, NbcProportions> _proportions;
  bool _isFinished = false;

  mutable QMutex _mutex;  // guards what follows, and the results
  NgcStatisticsSums _sums;
  NgaOrderedSum _partials;
  qint64 _nBuffers = 0;
};

#pragma once

#include "basic/calc/NbcStatBasic.h"
#include "basic/data/NbdDataPoints.h"
#include "geos/base/NgaExactSum.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include <vector>

class NgdADataSet;

/// The samples of a data set that takes values of samples of the input, in memory.
class NgcSampleOutput
{
public:
  /// `dataSet` outlives the object and is open; it has the selected samples of `input`.
  NgcSampleOutput(const NgdADataSet &dataSet, const NgdADataSet &input);

protected:
  int _getNSamples() const { return _buffer.getNSamples(); }
  NbdDataPoints &_getBuffer() { return _buffer; }

  /// Position of a sample; an error when it does not exist.
  int _find(qint64 sampleNumber) const;

  /// Writes the columns of the buffer.
  void _save() const;

  /// Statistics of a column.
  NbcStatBasic _calcStatistics(const QString &role) const;

private:
  const NgdADataSet &_dataSet;
  NbdDataPoints _buffer;
  const qint64 *_sampleNumbers = nullptr;
};

/// The weights of the samples, accumulated over the targets.
class NgcWeightsOutput : public NgcSampleOutput
{
public:
  /// `severalPasses`: more than one realization will be estimated.
  NgcWeightsOutput(const NgdADataSet &dataSet, const NgdADataSet &input, bool severalPasses);

  void add(qint64 sampleNumber, double weight) { _sums[_find(sampleNumber)].add(weight); }

  /// A pass over a parcel begins with what the parcels before have left; what its last pass leaves
  /// is kept.
  void beginPass();
  void endParcel();

  /// Divides the weights by their sum, when it is positive, and writes them.
  NbcStatBasic finish();

private:
  bool _severalPasses;
  std::vector<NgaExactSum> _sums;
  std::vector<NgaExactSum> _stored;
};

/// Values that the calculator gives to samples of the input, one variable per role.
class NgcInputWriteOutput : public NgcSampleOutput
{
public:
  NgcInputWriteOutput(const NgdADataSet &dataSet, const NgdADataSet &input,
                      const QStringList &roles);

  void set(qint64 sampleNumber, const QList<double> &values);

  /// As for the weights.
  void beginPass();
  void endParcel();

  /// Writes the values; samples without any are undefined.
  QMap<QString, NbcStatBasic> finish();

private:
  QStringList _roles;
  QList<NbdAVariableNumeric *> _columns;
  QMap<qint64, QList<double>> _values;  // of the parcel under way
};

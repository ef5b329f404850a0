#pragma once

#include "basic/base/NbbIDebuggable.h"
#include "basic/data/NbdDataPoints.h"
#include "basic/data/NbdVariableDetails.h"
#include "basic/geom/NbgIntVector3D.h"
#include "basic/geom/NbgVector3D.h"

#include <QList>
#include <QString>

class NgcENeighborhoodErrorCode;

/// What an interpolation did at one target: base of the results of single-target tests.
///
/// Filled by NgcAInterpol::test(): the calculator resets it and tells the target, its worker tells
/// the search and the estimate.
class NgmAInterpolTestResult : public NbbIDebuggable
{
public:
  ~NgmAInterpolTestResult() override;

  /// Forgets everything, before another test.
  virtual void reset();

  /// True when the test has reached an estimate.
  virtual bool hasResults() const = 0;

  /// Sample number of the target in the output data set (from 1).
  qint64 getTargetSampleNumber() const { return _targetSampleNumber; }
  const NbgVector3D &getTargetLocation() const { return _targetLocation; }
  /// Node of the target in a grid; undefined for points.
  const NbgIntVector3D &getTargetIndices() const { return _targetIndices; }
  void setTarget(qint64 sampleNumber, const NbgVector3D &location, const NbgIntVector3D &indices);

  /// Outcome of the search, and the search level that gave it: 0 the standard one, -1 none.
  const NgcENeighborhoodErrorCode &getNeighborhoodStatus() const;
  int getNestedIndex() const { return _nestedIndex; }
  const QString &getNestedName() const { return _nestedName; }
  void setNeighborhood(const NgcENeighborhoodErrorCode &status, int nestedIndex,
                       const QString &nestedName);

  /// The selected samples, with the variables that the test adds to them; none before a search and
  /// after one that found nothing.
  const NbdDataPoints &getNeighbors() const { return _neighbors; }
  NbdDataPoints &getNeighborsRef() { return _neighbors; }
  void setNeighbors(const NbdDataPoints &neighbors) { _neighbors = neighbors; }

  /// One sample: the target with what the test wrote to it.
  const NbdDataPoints &getTargetValues() const { return _targetValues; }
  void setTargetValues(const NbdDataPoints &values) { _targetValues = values; }

  /// Names, units and formats of the interpolated variables and of their estimates.
  const QList<NbdVariableDetails> &getInputDetails() const { return _inputDetails; }
  const QList<NbdVariableDetails> &getOutputDetails() const { return _outputDetails; }
  void setInputDetails(const QList<NbdVariableDetails> &details) { _inputDetails = details; }
  void setOutputDetails(const QList<NbdVariableDetails> &details) { _outputDetails = details; }

  /// The target, the outcome of the search and the neighbors; classes derived from this one give
  /// their own text instead. Level 1 shows at most 10 rows and columns of matrices.
  virtual QString toString(int level) const;

  /// Everything: this class's text, then that of the derived class.
  QString debug(int level) const override;

protected:
  NgmAInterpolTestResult();
  NgmAInterpolTestResult(const NgmAInterpolTestResult &) = default;
  NgmAInterpolTestResult &operator=(const NgmAInterpolTestResult &) = default;

private:
  qint64 _targetSampleNumber;
  NbgVector3D _targetLocation;
  NbgIntVector3D _targetIndices;
  int _status;
  int _nestedIndex = -1;
  QString _nestedName;
  NbdDataPoints _neighbors;
  NbdDataPoints _targetValues;
  QList<NbdVariableDetails> _inputDetails;
  QList<NbdVariableDetails> _outputDetails;
};

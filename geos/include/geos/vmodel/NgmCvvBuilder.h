#pragma once

#include "geos/base/NgcACalculator.h"
#include "geos/matrix/NgmMatrix.h"

#include <QList>
#include <QVector>

#include <memory>

class NgmABlock;
class NgmVModel;

/// Mean covariances inside a block, averaged over several random discretizations.
///
/// Shape:    one N x N matrix of NgmVModel::calcCvv() per try, and their mean
/// Default:  10 tries, seed 165426
/// Requires: model and block, to be set before the run
/// Results:  after a completed run; empty before
class NgmCvvBuilder : public NgcACalculator
{
public:
  NgmCvvBuilder();
  ~NgmCvvBuilder() override;

  /// The model and the block are copied.
  void setVModel(const NgmVModel &model);
  void setBlockDefinition(const NgmABlock &block);
  void setNTries(int nTries) { _nTries = nTries; }

  /// The seeds of the tries are drawn from the generator of this seed.
  void setSeed(quint64 seed) { _seed = seed; }

  /// The seeds of the tries, as many as there are.
  QVector<qint64> getSeeds() const;

  const QList<NgmMatrix> &getCvv() const { return _cvv; }
  NgmMatrix getMeanCvv() const;

protected:
  void _doFinalChecks() override;
  void _doRun() override;

private:
  std::unique_ptr<NgmVModel> _model;
  std::unique_ptr<NgmABlock> _block;
  int _nTries = 10;
  quint64 _seed = 165426;
  QList<NgmMatrix> _cvv;
};

#pragma once

#include "basic/data/NbdMacroIndex.h"
#include "basic/geom/NbgBox.h"
#include "basic/geom/NbgRotation.h"
#include "geos/NgmEnumGlobal.h"
#include "geos/base/NgcACalculatorComposite.h"
#include "geos/stats/NgmVariogramExpData.h"

#include <QList>

#include <memory>

class NgcVariogramOnGrid;
class NgdADataSet;
class NgdDataSetGrid;
class NgmVModel;

/// Experimental variograms of the realizations of a simulation on a grid, along the main directions
/// of its model, and their mean: to be compared with the model.
///
/// Directions: the U and V axes of the orientation, and W when the grid has a third dimension; the
///             first two in the group "Horizontal" (its plane is horizontal) or "Ref. Plane", the
///             last in the group "Normal"
/// Lags:       the step from a cell to the next one along the direction, up to half the extent of
///             the box
/// Input:      V holds macro variables with the same realizations
/// Results:    one per realization and last their mean, of values and of numbers of pairs. A
///             realization without pairs at a lag counts there with 0.
class NgcVariogramOnSimu : public NgcACalculatorComposite
{
public:
  NgcVariogramOnSimu();
  ~NgcVariogramOnSimu() override;

  void setInputDataSet(const NgdADataSet &dataSet);

  /// The model that was simulated.
  void setVModel(const NgmVModel &model);

  /// The field; that of the grid by default.
  void setBoundingBox(const NbgBox &box) { _box = box; }

  /// The orientation of the directions; that of the model's main structure by default.
  void setRotation(const NbgRotation &rotation);

  /// Results of the last run, until the next one.
  const QList<NgmVariogramExpData> &getResults() const;

protected:
  void _checkDatasets() override;
  void _addRuntimeConstraints() override;
  void _preProcessing() override;
  void _postProcessing() override;
  bool _prepareProgressable(const QString &id) override;
  void _progressableFinished(const QString &id) override;

private:
  class Mean;

  const NgdDataSetGrid &_getGrid() const;
  QList<NbdMacroIndex> _readRealizations() const;
  NbgRotation _getOrientation() const;
  void _addDirections(NgcVariogramOnGrid &calculator) const;
  void _addDirection(NgcVariogramOnGrid &calculator, const NbgVector3D &direction,
                     const NgmEDirectionGroupName &group, int rank) const;
  NgcVariogramOnGrid &_getCalculator(const QString &id) const;

  std::unique_ptr<NgmVModel> _model;
  NbgBox _box;
  std::unique_ptr<NbgRotation> _rotation;
  QList<NbdMacroIndex> _realizations;
  std::unique_ptr<Mean> _mean;
  QList<NgmVariogramExpData> _results;
};

#pragma once

#include "geos/vmodel/NgmLgsVModel.h"

#include <QVector>

#include <memory>

class NbdDataTable;
class NgcAKriging;
class NgmTarget;

/// The variogram models of one worker: that of the data and that of what is estimated, patched for
/// each target when they vary locally, and the variances of the targets.
class NgcKrigingModels
{
public:
  explicit NgcKrigingModels(const NgcAKriging &kriging);

  /// Takes the locally varying parameters of a buffer of targets.
  void setBuffer(const NbdDataTable &targets);

  /// The models of a target of the buffer; false when its parameters are undefined.
  bool patch(int position);

  const NgmVModel &getDataModel() const { return *_dataModel; }

  /// Without the filtered components; the same object when there are none.
  const NgmVModel &getEstimatedModel() const { return *_estimatedModel; }
  bool isFiltered() const { return _dataModel != _estimatedModel; }

  /// The model as patched; null where it does not vary.
  const NgmLgsVModel *getLocalModel() const { return _varies ? &_localModel : nullptr; }

  /// Variances of what is estimated at a target, by variable: at a point, or in the mean of a
  /// block.
  const QVector<double> &getTargetVariances(const NgmTarget &target);

private:
  void _computeVariances(const NgmTarget &target);

  const NgcAKriging &_kriging;
  const NgmVModel *_dataModel;
  const NgmVModel *_estimatedModel;
  bool _varies = false;
  NgmLgsVModel _localModel;
  std::unique_ptr<NgmVModel> _localFilteredModel;

  QVector<double> _variances;
  bool _variancesKnown = false;
};

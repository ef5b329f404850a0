#pragma once

#include "basic/geom/NbgGeomGrid.h"
#include "geos/base/NgcACalculator.h"
#include "geos/data/NgdDataSetPoints.h"

#include <QSharedPointer>

class NbdDataPoints;
class NbpMemoryProviderPointsW;

/// Moves samples to the centres of the blocks that hold them, in a copy held in memory.
///
/// In the discrete Gaussian model of direct block kriging a sample lies at random in its block, and
/// covariances are those of the blocks: a sample of block v counts with r C(v, v') towards block
/// v', C being taken between block centres and r the block correction coefficient.
///
/// The blocks are the cells of a grid, which goes on beyond its border. The copy has the samples at
/// their sample numbers, with the selection and all variables of the input under their roles.
///
/// Source:  Matheron (1976), Forecasting block grade distributions: the transfer functions;
///          Emery (2009), Change-of-support models and computer programs for direct block-support
///          simulation
class NgcCentering : public NgcACalculator
{
public:
  NgcCentering();
  ~NgcCentering() override;

  void setInputDataSet(const NgdADataSet &dataSet);
  void setBlocks(const NbgGeomGrid &blocks) { _blocks = blocks; }

  /// The centred samples of the last run.
  const NgdDataSetPoints &getCenteredDataSet() const { return _centered; }

protected:
  void _checkDatasets() override;
  void _addRuntimeConstraints() override;
  void _doRun() override;

private:
  QSharedPointer<NbpMemoryProviderPointsW> _createProvider(const NbdDataPoints &samples) const;
  NbgVector3D _center(const NbgVector3D &location) const;
  void _copyVariables(const NbdDataPoints &samples, NbpMemoryProviderPointsW &provider);

  NbgGeomGrid _blocks;
  NgdDataSetPoints _centered;
};

#pragma once

#include "basic/geom/NbgGeomGrid.h"
#include "basic/geom/NbgIntVector3D.h"
#include "geos/base/NgcACalculatorBuffer.h"
#include "geos/stats/NgaVariogramOnGrid.h"
#include "geos/stats/NgmVariogramExpData.h"

#include <QList>
#include <QMap>
#include <QStringList>
#include <QVector>

#include <memory>
#include <vector>

class NbdDataGridSampled;
class NgdDataSetGrid;

/// Experimental variograms of the nodes of a grid: the pairs of nodes that are a whole number of
/// cells apart, for each lag of each direction.
///
/// Formula:  gamma_ij(h) = sum (z_i(x + h) - z_i(x)) (z_j(x + h) - z_j(x)) / 2 N(h) over the N(h)
///           pairs of selected nodes where both variables are defined at both ends; h is the
///           increment between cell centers nearest to lag * k along the direction
/// Shape:    row k - 1 of a direction is lag k, 1 <= k <= nLags. Distances are those between the
///           nodes. A lag shorter than half a cell or longer than the grid has no pairs, and the
///           distance 0.
/// Macros:   V may be macro variables: one result per realization
/// Weights:  none, and no mask but the selection of the grid
/// Cost:     the FFT route takes the same time for any number of lags, O(n log n) with n the nodes
///           of the grid enlarged by the longest increment; the direct route O(n) per increment
/// Source:   Marcotte (1996), Fast variogram computation with FFT, Computers & Geosciences 22(10)
class NgcVariogramOnGrid : public NgcACalculatorBuffer
{
public:
  NgcVariogramOnGrid();
  ~NgcVariogramOnGrid() override;

  void setInputDataSet(const NgdADataSet &dataSet);

  /// A direction in world coordinates, of any length but 0, and the groups it belongs to; by rank
  /// in the second form. Lengths are those of the data; nLags is at least 1.
  void addDirection(const NbgVector3D &direction, double lag, int nLags,
                    const QStringList &groupNames);
  void addDirection(const NbgVector3D &direction, double lag, int nLags,
                    const QMap<int, QString> &groupNamesByRank);
  int getNDirections() const { return _directions.size(); }

  /// The plane that the groups refer to; that of the grid by default.
  void setReferencePlane(const NbgRotation &plane);

  /// Part of the nodes to keep, 1e-5 to 1. Nodes are thinned evenly along the axes as far as this
  /// part is kept and no lag loses its pairs: a step divides all increments along its axis.
  void setDecimation(double ratio);
  double getDecimation() const { return _decimation; }

  /// Also cross-variograms; true by default.
  void setComputeCross(bool cross) { _computeCross = cross; }
  bool computeCross() const { return _computeCross; }

  /// FFT route (by default) or direct one. Both give the same variograms, to rounding.
  void setUseFFT(bool use) { _useFFT = use; }
  bool getUseFFT() const { return _useFFT; }

  const NgdDataSetGrid &getGridDataset() const;

  /// Map of the increments: cells of the input grid around the origin, as far as the buffer
  /// extension. Known after the run's preparation.
  NbgGeomGrid getVMapGeometry() const;

  /// The distinct increments of all directions and lags, in cells; without the null one.
  const QVector<NbgIntVector3D> &getVariogramGridIncrements() const { return _increments; }

  /// Steps of the nodes that are kept, and the number of nodes around a buffer that its pairs
  /// reach.
  void getDecimationAndBufferExtension(NbgIntVector3D &decimation, NbgIntVector3D &extension) const;

  /// For the workers: the next buffer, null at the end; the caller owns it. Thread-safe.
  NbdDataGridSampled *getNextBuffer();

  /// For the workers: takes the map of a buffer. Thread-safe.
  void saveVmap(const NgaVariogramOnGrid &map);

  /// Number of realizations of the last run; 1 for plain variables.
  int getNResults() const { return _results.size(); }

  /// The variograms of a realization (by rank), until the next run.
  const NgmVariogramExpData &getResults(int realization) const;

protected:
  void _checkDatasets() override;
  void _addRuntimeConstraints() override;
  void _initBufferManager() override;
  void _createBufferIterator() override;
  const NgdADataSet *_bufferDataset() const override;
  NgwAThread *_createComputingThread(NgwThreadPool *pool) override;
  void _preProcessing() override;
  void _postProcessing() override;

private:
  class Worker;

  struct Direction
  {
    NbgVector3D vector;  // of length 1
    double lag;
    int nLags;
    QMap<int, QString> groups;
    bool hasRanks;  // the keys are ranks, else they give the order
  };

  void _addDirection(const NbgVector3D &vector, double lag, int nLags,
                     const QMap<int, QString> &groups, bool hasRanks);
  bool _getIncrement(const NbgVector3D &point, NbgIntVector3D &increment) const;
  void _setIncrements();
  void _setDecimationAndBufferExtension();
  NgmVariogramExpData _makeResults() const;
  void _extractVariograms(const NgaVariogramOnGrid &map, NgmVariogramExpData &results) const;
  void _extractLag(const NgaVariogramOnGrid &map, int i, int j, const NbgVector3D &point,
                   double &distance, long long &nPairs, double &value) const;

  QList<Direction> _directions;
  std::unique_ptr<NbgRotation> _referencePlane;
  NbgGeomGrid _mapGeometry;
  QVector<NbgIntVector3D> _increments;
  NbgIntVector3D _step = NbgIntVector3D::Unit;
  NbgIntVector3D _extension = NbgIntVector3D::Null;
  double _decimation = 1.;
  bool _computeCross = true;
  bool _useFFT = true;
  int _nMacroIndices = 1;
  int _nVariables = 0;
  std::vector<std::unique_ptr<NgaVariogramOnGrid>> _maps;  // one per realization
  QList<NgmVariogramExpData> _results;
};

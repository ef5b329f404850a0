#pragma once

#include "basic/geom/NbgIntVector3D.h"
#include "geos/data/NgdABufferManager.h"

#include <memory>

class NgdDataSetGrid;

/// Cuts a grid data set, or a sub-grid of it, into blocks of nodes.
///
/// Order 0: blocks of blockX planes along the first axis by blockY rows along the second, with the
/// whole third axis. Order 1: one plane across the first axis a buffer. Order 2: one plane across
/// the third.
class NgdBufferManagerGrid final : public NgdABufferManager
{
public:
  /// Keeps a clone of the data set; the target is the whole grid.
  explicit NgdBufferManagerGrid(const NgdDataSetGrid &dataSet);
  ~NgdBufferManagerGrid() override;

  int getNSamplesPerBuffer() const override { return _nSamplesPerBuffer; }
  NgdIBufferIterator *createBufferIterator() const override;

  /// Restricts the buffers to a block of `nodeCounts` nodes from node `origin`; call it before
  /// sizing.
  void setTargetSubGrid(const NbgIntVector3D &nodeCounts, const NbgIntVector3D &origin);

  /// Slabs of whole planes for work that needs `border` more nodes on each side of a buffer: fewer
  /// planes and then fewer threads until all the threads' buffers fit in `maxMemory`. Returns the
  /// number of threads kept.
  int setOptimalBlockSize(qint64 maxMemory, const NbgIntVector3D &border, int nThreads);

  /// Slabs of that many whole planes.
  void setSlicesPerBuffer(int nSlices);

  void setOrder(int order) { _order = order; }
  int getOrder() const { return _order; }

  /// One plane a buffer, across the first axis (order 1) or across the third (order 2).
  void splitInPlane(int order);

  int getNplanesPerBuffer() const { return _blockX; }
  int getNRowsPerBuffer() const { return _blockY; }

  /// Leaves out the undefined cells of a sparse grid.
  void setCompressionEnabled(bool enabled) { _compressionEnabled = enabled; }
  bool isCompressionEnabled() const { return _compressionEnabled; }

protected:
  void _tuneBufferSize(qint64 maxMemory, int nThreads, int nPreferred) override;
  void _setBufferSize(qint64 bytes) override;
  void _setNSamplesPerBuffer(int nSamples) override;

private:
  void _checkOrder() const;
  void _setWholeGrid();
  void _setColumns(qint64 memoryPerThread, int nThreads);
  void _setSlabs(qint64 nPlanes);
  void _searchBlock(qint64 nSamples);
  void _setBlock(qint64 nSamples, qint64 blockX, qint64 blockY, qint64 nCuts);

  std::unique_ptr<NgdDataSetGrid> _dataSet;
  int _nSamplesPerBuffer = 1;
  int _blockX = 1;
  int _blockY = 1;
  int _order = 0;
  NbgIntVector3D _target;
  NbgIntVector3D _targetOrigin;
  bool _compressionEnabled = false;
};

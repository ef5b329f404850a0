#pragma once

#include <QString>
#include <QtGlobal>

#include <vector>

class NbdAData;
class NgcAPairwiseStat;
class NgdDataDoubleBuffer;

/// The samples of a pair of buffers as arrays: those of the first buffer, then those of the second
/// unless both are the same. Undefined values are not a number.
class NgcPairwiseSamples
{
public:
  /// Samples that follow each other and ascend along the sorted dimension.
  struct Chunk
  {
    qint64 rank;
    int first;
    int last;  ///< one behind
  };

  NgcPairwiseSamples(const NgdDataDoubleBuffer &buffers, const NgcAPairwiseStat &calculator);

  int count() const { return int(_axes[0].size()); }
  const std::vector<double> &getAxis(int axis) const { return _axes[axis]; }
  const std::vector<qint64> &getNumbers() const { return _numbers; }
  /// Whether all coordinates of a sample are defined: others make no pairs.
  bool isPlaced(int i) const;

  int getRoleCount(const QString &role) const;
  std::vector<double> read(const QString &role, int index = 0) const;

  /// The order that takes the samples that are kept, one flag each, by chunks, and the chunks in
  /// that order; first those of the first buffer.
  std::vector<int> makeChunks(const std::vector<unsigned char> &isKept);
  const std::vector<Chunk> &getChunks() const { return _chunks; }

  /// Calls f(i, j) for the pairs of chunks that the buffers stand for: i = j too when both are the
  /// same.
  template <class Function>
  void forEachPairOfChunks(Function f) const
  {
    const int n = int(_chunks.size());
    for (int i = 0; i < _nFirstChunks; ++i) {
      for (int j = _isSame ? i : _nFirstChunks; j < n; ++j)
        f(i, j);
    }
  }

private:
  void _append(const NbdAData &data);
  void _addChunks(int first, int last, int rank, const std::vector<unsigned char> &isKept,
                  std::vector<int> &order);

  std::vector<const NbdAData *> _buffers;
  std::vector<int> _ranks;
  bool _isSame;
  qint64 _chunkSize;
  int _nFirst = 0;
  int _nFirstChunks = 0;
  std::vector<double> _axes[3];
  std::vector<qint64> _numbers;
  std::vector<Chunk> _chunks;
};

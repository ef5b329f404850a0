#pragma once

#include "base/private/NgaStatBlockSum.h"

class NbdAData;
class NbdAVariableNumeric;

/// The selected samples of a buffer in blocks of a fixed length, for kernels on plain arrays.
class NgcSelectedBlocks
{
public:
  static constexpr int BLOCK = NgaStatBlockSum::BLOCK;

  /// The selection of the buffer must not change while the object lives.
  explicit NgcSelectedBlocks(const NbdAData &buffer);

  int getNSamples() const { return _nSamples; }
  int getNBlocks() const { return (_nSamples + BLOCK - 1) / BLOCK; }
  int getLength(int block) const;

  /// The values of a block's samples, undefined ones as NbbGlobal::D_FFFF or as they are stored in
  /// a double variable. Points into the variable or to `work`, which has room for BLOCK values.
  const double *read(const NbdAVariableNumeric &variable, int block, double *work) const;

private:
  const int *_positions = nullptr;  // null: all samples
  int _nSamples;
};

#pragma once

class NbdAData;

/// A pair of buffers that it owns; both may be the same. It carries their ranks among the buffers
/// of the data set, -1 when they are not known.
class NgdDataDoubleBuffer
{
public:
  NgdDataDoubleBuffer(const NbdAData *first, const NbdAData *second, bool sameData, int rank1 = -1,
                      int rank2 = -1);
  ~NgdDataDoubleBuffer();
  NgdDataDoubleBuffer(const NgdDataDoubleBuffer &) = delete;
  NgdDataDoubleBuffer &operator=(const NgdDataDoubleBuffer &) = delete;

  const NbdAData *getBuffer1() const { return _first; }
  const NbdAData *getBuffer2() const { return _second; }
  bool areSameData() const { return _sameData; }
  int getRank1() const { return _rank1; }
  int getRank2() const { return _rank2; }

private:
  const NbdAData *_first;
  const NbdAData *_second;
  bool _sameData;
  int _rank1;
  int _rank2;
};

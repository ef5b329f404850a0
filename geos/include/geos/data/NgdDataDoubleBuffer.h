#pragma once

class NbdAData;

/// A pair of buffers that it owns; both may be the same.
class NgdDataDoubleBuffer
{
public:
  NgdDataDoubleBuffer(const NbdAData *first, const NbdAData *second, bool sameData);
  ~NgdDataDoubleBuffer();
  NgdDataDoubleBuffer(const NgdDataDoubleBuffer &) = delete;
  NgdDataDoubleBuffer &operator=(const NgdDataDoubleBuffer &) = delete;

  const NbdAData *getBuffer1() const { return _first; }
  const NbdAData *getBuffer2() const { return _second; }
  bool areSameData() const { return _sameData; }

private:
  const NbdAData *_first;
  const NbdAData *_second;
  bool _sameData;
};

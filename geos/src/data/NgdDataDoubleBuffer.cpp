#include "geos/data/NgdDataDoubleBuffer.h"

#include "basic/data/NbdAData.h"

NgdDataDoubleBuffer::NgdDataDoubleBuffer(const NbdAData *first, const NbdAData *second,
                                         bool sameData, int rank1, int rank2)
    : _first(first), _second(second), _sameData(sameData), _rank1(rank1), _rank2(rank2)
{
}

NgdDataDoubleBuffer::~NgdDataDoubleBuffer()
{
  if (_second != _first)
    delete _second;
  delete _first;
}

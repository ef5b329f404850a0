#include "geos/data/NgdDataDoubleBuffer.h"

#include "basic/data/NbdAData.h"

NgdDataDoubleBuffer::NgdDataDoubleBuffer(const NbdAData *first, const NbdAData *second,
                                         bool sameData)
    : _first(first), _second(second), _sameData(sameData)
{
}

NgdDataDoubleBuffer::~NgdDataDoubleBuffer()
{
  if (_second != _first)
    delete _second;
  delete _first;
}

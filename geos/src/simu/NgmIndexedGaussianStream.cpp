#include "geos/simu/NgmIndexedGaussianStream.h"

#include "basic/error/NbeAssertion.h"
#include "geos/simu/NgmRandomNumberFunctions.h"

NgmIndexedGaussianStream::NgmIndexedGaussianStream(qint64 nValuesPerItem, int k, quint64 seed,
                                                   tSize size)
    : _gaussian(1, NgmRandomNumberGenerator::SIZE_5),
      _nValuesPerItem(nValuesPerItem),
      _size(size),
      _baseSeed(NgmRandomNumberGenerator(seed, size).nextNumber(k))
{
}

double NgmIndexedGaussianStream::value(bool continuing, qint64 item)
{
  if (continuing)
    return _gaussian.nextR();
  if (item < 1)
    NBE_FAIL(QStringLiteral("item >= 1"));

  const qint64 block = (item - 1) / BLOCK_SIZE;
  if (block != _block || item <= _position)
    _startBlock(block);
  _gaussian.skip(_nValuesPerItem * (item - _position - 1));
  _position = item;
  return _gaussian.nextR();
}

void NgmIndexedGaussianStream::_startBlock(qint64 block)
{
  quint64 seed = NgmRandomNumberFunctions::nextSeedNumber(_baseSeed, 1, block * BLOCK_SIZE, _size);
  if (seed == NgmRandomNumberGenerator::getSizeModulus(_size))
    seed = 1;  // no generator takes its modulus as a seed
  _gaussian = NgmDistributionGaussian(0., 1., seed, _size);
  _block = block;
  _position = block * BLOCK_SIZE;
}

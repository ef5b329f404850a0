#include "stats/private/NgwAPairwise.h"

#include "geos/data/NgdDataDoubleBuffer.h"
#include "geos/stats/NgcAPairwiseStat.h"

#include <memory>

NgwAPairwise::NgwAPairwise(NgwThreadPool *pool, NgcAPairwiseStat &calculator)
    : NgwAThread(pool), _pairs(calculator)
{
}

void NgwAPairwise::_run()
{
  while (const std::unique_ptr<NgdDataDoubleBuffer> buffers{_pairs.getDoubleBuffer()}) {
    _process(*buffers);
    _pairs.finishDoubleBuffer();
  }
}

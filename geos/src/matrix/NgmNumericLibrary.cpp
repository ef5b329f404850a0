#include "geos/matrix/NgmNumericLibrary.h"

#include <mkl.h>

void NgmNumericLibrary::setThreads(int nThreads)
{
  mkl_set_num_threads(nThreads);
}

bool NgmNumericLibrary::setReproducible()
{
  const int branch = mkl_cbwr_get_auto_branch();
  if (mkl_cbwr_get(MKL_CBWR_BRANCH) == branch)
    return true;
  return mkl_cbwr_set(branch) == MKL_CBWR_SUCCESS;
}

void NgmNumericLibrary::freeThreadBuffers()
{
  mkl_thread_free_buffers();
}

NgmNumericLibrary::ThreadCount::ThreadCount(int nThreads)
    : _previous(mkl_set_num_threads_local(nThreads))
{
}

NgmNumericLibrary::ThreadCount::~ThreadCount()
{
  mkl_set_num_threads_local(_previous);
}

#include "geos/matrix/NgmFourierTransform.h"

#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeProgrammingError.h"

#include <mkl_dfti.h>

#include <algorithm>

namespace {

void check(MKL_LONG status)
{
  if (status != DFTI_NO_ERROR)
    NBE_FAIL(QString::fromUtf8(DftiErrorMessage(status)));
}

struct DescriptorDeleter
{
  void operator()(DFTI_DESCRIPTOR *descriptor) const { DftiFreeDescriptor(&descriptor); }
};

using Descriptor = std::unique_ptr<DFTI_DESCRIPTOR, DescriptorDeleter>;

/// Strides of an array whose last dimension is fastest; the first element is the offset.
std::vector<MKL_LONG> stridesOf(const std::vector<MKL_LONG> &sizes)
{
  std::vector<MKL_LONG> strides(sizes.size() + 1, 0);
  MKL_LONG stride = 1;
  for (std::size_t axis = sizes.size(); axis > 0; --axis) {
    strides[axis] = stride;
    stride *= sizes[axis - 1];
  }
  return strides;
}

Descriptor makeDescriptor(const std::vector<MKL_LONG> &sizes, bool isForward)
{
  DFTI_DESCRIPTOR_HANDLE handle = nullptr;
  const MKL_LONG nDimensions = static_cast<MKL_LONG>(sizes.size());
  // The number of values of a single dimension is not an array.
  if (nDimensions == 1)
    check(DftiCreateDescriptor(&handle, DFTI_DOUBLE, DFTI_REAL, nDimensions, sizes[0]));
  else
    check(DftiCreateDescriptor(&handle, DFTI_DOUBLE, DFTI_REAL, nDimensions, sizes.data()));
  Descriptor descriptor(handle);
  std::vector<MKL_LONG> half = sizes;
  half.back() = half.back() / 2 + 1;
  std::vector<MKL_LONG> values = stridesOf(sizes);
  std::vector<MKL_LONG> frequencies = stridesOf(half);
  check(DftiSetValue(handle, DFTI_PLACEMENT, DFTI_NOT_INPLACE));
  check(DftiSetValue(handle, DFTI_CONJUGATE_EVEN_STORAGE, DFTI_COMPLEX_COMPLEX));
  check(DftiSetValue(handle, DFTI_INPUT_STRIDES, (isForward ? values : frequencies).data()));
  check(DftiSetValue(handle, DFTI_OUTPUT_STRIDES, (isForward ? frequencies : values).data()));
  // Bits must not depend on how many threads there are.
  const MKL_LONG one = 1;
  check(DftiSetValue(handle, DFTI_THREAD_LIMIT, one));
  return descriptor;
}

}  // namespace

struct NgmFourierTransform::Plan
{
  Descriptor forward;
  Descriptor backward;
};

NgmFourierTransform::NgmFourierTransform(const std::vector<int> &sizes)
    : _plan(std::make_unique<Plan>())
{
  if (sizes.empty() || *std::min_element(sizes.begin(), sizes.end()) < 1)
    throw NbeProgrammingError(QStringLiteral("Error: FFTNS() - dimension error"));
  _nValues = 1;
  for (const int size : sizes)
    _nValues *= std::size_t(size);
  _nFrequencies = _nValues / sizes.back() * (sizes.back() / 2 + 1);

  const std::vector<MKL_LONG> lengths(sizes.begin(), sizes.end());
  _plan->forward = makeDescriptor(lengths, true);
  _plan->backward = makeDescriptor(lengths, false);
  check(DftiSetValue(_plan->backward.get(), DFTI_BACKWARD_SCALE, 1. / double(_nValues)));
  check(DftiCommitDescriptor(_plan->forward.get()));
  check(DftiCommitDescriptor(_plan->backward.get()));
}

NgmFourierTransform::~NgmFourierTransform() = default;

void NgmFourierTransform::forward(const double *values, std::complex<double> *frequencies) const
{
  check(DftiComputeForward(_plan->forward.get(), const_cast<double *>(values), frequencies));
}

void NgmFourierTransform::backward(std::complex<double> *frequencies, double *values) const
{
  check(DftiComputeBackward(_plan->backward.get(), frequencies, values));
}

int NgmFourierTransform::getFastSize(int n)
{
  const auto isFast = [](int size) {
    for (const int factor : {2, 3, 5, 7}) {
      while (size % factor == 0)
        size /= factor;
    }
    return size == 1;
  };
  int size = std::max(n, 1);
  while (!isFast(size))
    ++size;
  return size;
}

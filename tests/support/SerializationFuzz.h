#pragma once

#include "basic/base/NbbASerializable.h"
#include "basic/error/NbeError.h"
#include "basic/error/NbeUserError.h"

#include <QByteArray>
#include <QDataStream>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cstdio>
#include <random>

#if defined(__SANITIZE_ADDRESS__)
#define ORVENAL_TEST_ADDRESS_SANITIZER 1
#endif

namespace test {

/// The stream of an object.
inline QByteArray toBytes(const NbbASerializable &object)
{
  QByteArray bytes;
  QDataStream stream(&bytes, QIODevice::WriteOnly);
  object.serialize(stream);
  return bytes;
}

/// Reads `object` from `bytes`.
inline void fromBytes(const QByteArray &bytes, NbbASerializable &object)
{
  QDataStream stream(bytes);
  object.unserialize(stream);
}

/// While it lives, memory that the process takes in addition fails beyond `bytes`. Without effect
/// under AddressSanitizer, which reserves address space of its own.
class AddressSpaceGuard
{
public:
  explicit AddressSpaceGuard(rlim_t bytes)
  {
    getrlimit(RLIMIT_AS, &_before);
#ifndef ORVENAL_TEST_ADDRESS_SANITIZER
    rlimit limit = _before;
    limit.rlim_cur = std::min<rlim_t>(_before.rlim_cur, _usedBytes() + bytes);
    setrlimit(RLIMIT_AS, &limit);
#else
    Q_UNUSED(bytes)
#endif
  }
  ~AddressSpaceGuard()
  {
    setrlimit(RLIMIT_AS, &_before);
  }
  Q_DISABLE_COPY(AddressSpaceGuard)

private:
  static rlim_t _usedBytes()
  {
    unsigned long pages = 0;
    if (FILE *file = std::fopen("/proc/self/statm", "r")) {
      if (std::fscanf(file, "%lu", &pages) != 1)
        pages = 0;
      std::fclose(file);
    }
    return rlim_t(pages) * 4096;
  }

  rlimit _before;
};

/// Checks how `object` is written and read:
/// - what is read back writes the same bytes, and reading ends where writing ended;
/// - every truncation is refused by an NbeUserError, and `target` stays as it was;
/// - streams with flipped bytes are read or refused by an NbeError, never anything else, and never
///   take more than 128 MiB; a refusal leaves `target` as it was;
/// - in between, the original stream is still read.
/// `target` is another object of the same class; use one in another state than `object`.
inline void fuzzSerialization(const NbbASerializable &object, NbbASerializable &target,
                              unsigned int seed = 20250301u, int nFlips = 3000)
{
  const QByteArray bytes = toBytes(object);
  const QByteArray untouched = toBytes(target);
  AddressSpaceGuard guard(rlim_t(128) << 20);

  for (int length = 0; length < bytes.size(); ++length) {
    ASSERT_THROW(fromBytes(bytes.left(length), target), NbeUserError) << "cut at " << length;
    ASSERT_EQ(toBytes(target), untouched) << "changed by a stream cut at " << length;
  }

  QDataStream stream(bytes + QByteArray("next"));
  ASSERT_NO_THROW(target.unserialize(stream));
  ASSERT_EQ(toBytes(target), bytes);
  ASSERT_EQ(stream.device()->pos(), bytes.size());

  std::mt19937 generator(seed);
  for (int flip = 0; flip < nFlips; ++flip) {
    QByteArray damaged = bytes;
    const int nBytes = 1 + int(generator() % 4);
    for (int i = 0; i < nBytes; ++i)
      damaged[int(generator() % unsigned(damaged.size()))] = char(generator());
    if (generator() % 4 == 0)
      damaged.truncate(int(generator() % unsigned(damaged.size() + 1)));

    const QByteArray before = toBytes(target);
    try {
      fromBytes(damaged, target);
    } catch (const NbeError &) {
      ASSERT_EQ(toBytes(target), before) << "changed by refused stream " << flip;
    } catch (const std::exception &exception) {
      FAIL() << "stream " << flip << " (seed " << seed << "): " << exception.what();
    }
    if (flip % 100 == 0) {
      ASSERT_NO_THROW(fromBytes(bytes, target));
      ASSERT_EQ(toBytes(target), bytes);
    }
  }
}

/// The same into a default-constructed object.
template <class T>
void fuzzSerialization(const T &object)
{
  T target;
  fuzzSerialization(static_cast<const NbbASerializable &>(object), target);
}

}  // namespace test

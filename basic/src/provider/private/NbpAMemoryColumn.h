#pragma once

#include "basic/data/Nbd.h"
#include "provider/private/NbpRuns.h"

class NbdAVariable;
class NbdEnumCatalog;

/// The values of one variable, addressed by rank.
class NbpAMemoryColumn
{
public:
  NbpAMemoryColumn() = default;
  virtual ~NbpAMemoryColumn() = default;
  NbpAMemoryColumn(const NbpAMemoryColumn &) = delete;
  NbpAMemoryColumn &operator=(const NbpAMemoryColumn &) = delete;

  virtual Nbd::EVariableType getType() const = 0;
  virtual bool isWritable() const = 0;
  virtual qint64 getSize() const = 0;

  /// The categories of an enumerated variable, else null.
  virtual const NbdEnumCatalog *getCatalog() const { return nullptr; }

  /// Copies runs to or from a buffer's variable, converting values between their types.
  virtual void read(const NbpRuns &runs, NbdAVariable &values) const = 0;
  virtual void write(const NbpRuns &runs, const NbdAVariable &values) = 0;

  /// Gives n samples from `rank` on in place of nOld; all of them get undefined values.
  virtual void replace(qint64 rank, qint64 nOld, qint64 n) = 0;

  /// Makes sure that the column can grow to `size` without failing.
  virtual void reserve(qint64 size) = 0;

  /// The values taken as a selection, 0 or 1, one byte per sample.
  virtual std::vector<unsigned char> getFlags() const = 0;
};

#pragma once

#include "basic/data/NbdAVariableNumeric_impl.h"

/// 64-bit integers, sample numbers for example; undefined is I64_FFFF.
class NbdVariableInt64 : public NbdAVariableNumeric_impl<qint64>
{
public:
  explicit NbdVariableInt64(const NbdVariableDetails &details = NbdVariableDetails());
  explicit NbdVariableInt64(const QString &name);

  Nbd::EVariableType getVariableType() const override;
  std::unique_ptr<NbdAVariable> clone() const override;
  void acceptVisitor(NbdIVariableVisitor &visitor) const override;
  void acceptMutator(NbdIVariableMutator &mutator) override;

  /// Position of the first such value, -1 when there is none.
  int findInt(qint64 value) const { return find(value); }
  /// The same by bisection, for defined ascending values.
  int findIntSorted(qint64 value) const;
};

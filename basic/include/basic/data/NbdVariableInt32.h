#pragma once

#include "basic/data/NbdAVariableNumeric_impl.h"

class NbcProportions;

/// 32-bit integers; undefined is I32_FFFF.
class NbdVariableInt32 : public NbdAVariableNumeric_impl<int>
{
public:
  explicit NbdVariableInt32(const NbdVariableDetails &details = NbdVariableDetails());
  explicit NbdVariableInt32(const QString &name);

  Nbd::EVariableType getVariableType() const override;
  std::unique_ptr<NbdAVariable> clone() const override;
  void acceptVisitor(NbdIVariableVisitor &visitor) const override;
  void acceptMutator(NbdIVariableMutator &mutator) override;

  /// Numbers and shares of the samples by value.
  NbcProportions getProportions() const;
};

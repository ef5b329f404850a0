#pragma once

#include "basic/data/NbdAVariableNumeric_impl.h"

/// Values in single precision; undefined is F_FFFF (see NbbGlobal::isDefined()).
class NbdVariableFloat : public NbdAVariableNumeric_impl<float>
{
public:
  explicit NbdVariableFloat(const NbdVariableDetails &details = NbdVariableDetails());
  explicit NbdVariableFloat(const QString &name);

  Nbd::EVariableType getVariableType() const override;
  std::unique_ptr<NbdAVariable> clone() const override;
  void acceptVisitor(NbdIVariableVisitor &visitor) const override;
  void acceptMutator(NbdIVariableMutator &mutator) override;
};

#pragma once

#include "basic/data/NbdAVariableNumeric_impl.h"

/// Values in double precision; undefined is D_FFFF (see NbbGlobal::isDefined()).
class NbdVariableDouble : public NbdAVariableNumeric_impl<double>
{
public:
  explicit NbdVariableDouble(const NbdVariableDetails &details = NbdVariableDetails());
  explicit NbdVariableDouble(const QString &name);

  Nbd::EVariableType getVariableType() const override;
  std::unique_ptr<NbdAVariable> clone() const override;
  void acceptVisitor(NbdIVariableVisitor &visitor) const override;
  void acceptMutator(NbdIVariableMutator &mutator) override;
};

#include "basic/data/NbdVariableFloat.h"

#include "basic/data/NbdIVariableMutator.h"
#include "basic/data/NbdIVariableVisitor.h"

NbdVariableFloat::NbdVariableFloat(const NbdVariableDetails &details)
    : NbdAVariableNumeric_impl(details)
{
}

NbdVariableFloat::NbdVariableFloat(const QString &name) : NbdVariableFloat(NbdVariableDetails(name))
{
}

Nbd::EVariableType NbdVariableFloat::getVariableType() const
{
  return Nbd::TYPE_FLOAT;
}

std::unique_ptr<NbdAVariable> NbdVariableFloat::clone() const
{
  return std::make_unique<NbdVariableFloat>(*this);
}

void NbdVariableFloat::acceptVisitor(NbdIVariableVisitor &visitor) const
{
  visitor.visit(*this);
}

void NbdVariableFloat::acceptMutator(NbdIVariableMutator &mutator)
{
  mutator.mutate(*this);
}

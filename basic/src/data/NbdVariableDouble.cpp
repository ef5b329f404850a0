#include "basic/data/NbdVariableDouble.h"

#include "basic/data/NbdIVariableMutator.h"
#include "basic/data/NbdIVariableVisitor.h"

NbdVariableDouble::NbdVariableDouble(const NbdVariableDetails &details)
    : NbdAVariableNumeric_impl(details)
{
}

NbdVariableDouble::NbdVariableDouble(const QString &name)
    : NbdVariableDouble(NbdVariableDetails(name))
{
}

Nbd::EVariableType NbdVariableDouble::getVariableType() const
{
  return Nbd::TYPE_DOUBLE;
}

std::unique_ptr<NbdAVariable> NbdVariableDouble::clone() const
{
  return std::make_unique<NbdVariableDouble>(*this);
}

void NbdVariableDouble::acceptVisitor(NbdIVariableVisitor &visitor) const
{
  visitor.visit(*this);
}

void NbdVariableDouble::acceptMutator(NbdIVariableMutator &mutator)
{
  mutator.mutate(*this);
}

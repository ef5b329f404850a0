#include "basic/data/NbdVariableInt32.h"

#include "basic/data/NbdIVariableMutator.h"
#include "basic/data/NbdIVariableVisitor.h"
#include "data/private/NbdCategoryCounter.h"

NbdVariableInt32::NbdVariableInt32(const NbdVariableDetails &details)
    : NbdAVariableNumeric_impl(details)
{
}

NbdVariableInt32::NbdVariableInt32(const QString &name) : NbdVariableInt32(NbdVariableDetails(name))
{
}

Nbd::EVariableType NbdVariableInt32::getVariableType() const
{
  return Nbd::TYPE_INT32;
}

std::unique_ptr<NbdAVariable> NbdVariableInt32::clone() const
{
  return std::make_unique<NbdVariableInt32>(*this);
}

void NbdVariableInt32::acceptVisitor(NbdIVariableVisitor &visitor) const
{
  visitor.visit(*this);
}

void NbdVariableInt32::acceptMutator(NbdIVariableMutator &mutator)
{
  mutator.mutate(*this);
}

NbcProportions NbdVariableInt32::getProportions() const
{
  return NbdCategoryCounter::getProportions(getArrayConst(), getNValues());
}

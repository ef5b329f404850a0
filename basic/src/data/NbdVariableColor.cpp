#include "basic/data/NbdVariableColor.h"

#include "basic/data/NbdIVariableMutator.h"
#include "basic/data/NbdIVariableVisitor.h"

NbdVariableColor::NbdVariableColor(const NbdVariableDetails &details) : NbdAVariable_impl(details)
{
}

NbdVariableColor::NbdVariableColor(const QString &name) : NbdVariableColor(NbdVariableDetails(name))
{
}

Nbd::EVariableType NbdVariableColor::getVariableType() const
{
  return Nbd::TYPE_COLOR;
}

std::unique_ptr<NbdAVariable> NbdVariableColor::clone() const
{
  return std::make_unique<NbdVariableColor>(*this);
}

void NbdVariableColor::acceptVisitor(NbdIVariableVisitor &visitor) const
{
  visitor.visit(*this);
}

void NbdVariableColor::acceptMutator(NbdIVariableMutator &mutator)
{
  mutator.mutate(*this);
}

#include "basic/data/NbdVariableSelection.h"

#include "basic/data/NbdIVariableMutator.h"
#include "basic/data/NbdIVariableVisitor.h"

#include <algorithm>

NbdVariableSelection::NbdVariableSelection(const NbdVariableDetails &details)
    : NbdAVariableNumeric_impl(details)
{
}

NbdVariableSelection::NbdVariableSelection(const QString &name)
    : NbdVariableSelection(NbdVariableDetails(name))
{
}

Nbd::EVariableType NbdVariableSelection::getVariableType() const
{
  return Nbd::TYPE_BOOLEAN;
}

std::unique_ptr<NbdAVariable> NbdVariableSelection::clone() const
{
  return std::make_unique<NbdVariableSelection>(*this);
}

void NbdVariableSelection::acceptVisitor(NbdIVariableVisitor &visitor) const
{
  visitor.visit(*this);
}

void NbdVariableSelection::acceptMutator(NbdIVariableMutator &mutator)
{
  mutator.mutate(*this);
}

int NbdVariableSelection::getNSelected() const
{
  const std::vector<unsigned char> &flags = getVector();
  return getNValues() - int(std::count(flags.begin(), flags.end(), 0));
}

#include "basic/data/NbdVariableAlpha.h"

#include "basic/data/NbdIVariableMutator.h"
#include "basic/data/NbdIVariableVisitor.h"
#include "basic/data/NbdVariableEnum.h"

NbdVariableAlpha::NbdVariableAlpha(const NbdVariableDetails &details) : NbdAVariable_impl(details)
{
}

NbdVariableAlpha::NbdVariableAlpha(const QString &name) : NbdVariableAlpha(NbdVariableDetails(name))
{
}

Nbd::EVariableType NbdVariableAlpha::getVariableType() const
{
  return Nbd::TYPE_ALPHA;
}

std::unique_ptr<NbdAVariable> NbdVariableAlpha::clone() const
{
  return std::make_unique<NbdVariableAlpha>(*this);
}

void NbdVariableAlpha::acceptVisitor(NbdIVariableVisitor &visitor) const
{
  visitor.visit(*this);
}

void NbdVariableAlpha::acceptMutator(NbdIVariableMutator &mutator)
{
  mutator.mutate(*this);
}

void NbdVariableAlpha::copyValuesFrom(const NbdAVariable &other, int otherFirst, int first, int n)
{
  const auto *codes = dynamic_cast<const NbdVariableEnum *>(&other);
  if (!codes)
    return NbdAVariable_impl::copyValuesFrom(other, otherFirst, first, n);
  _checkRange(first, n);
  _checkOtherRange(other, otherFirst, n);
  for (int i = 0; i < n; ++i)
    setValueAsType(first + i, codes->getCategoryName(otherFirst + i));
}

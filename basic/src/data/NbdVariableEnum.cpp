#include "basic/data/NbdVariableEnum.h"

#include "basic/data/NbdIVariableMutator.h"
#include "basic/data/NbdIVariableVisitor.h"
#include "basic/data/NbdVariableAlpha.h"
#include "data/private/NbdCategoryCounter.h"

NbdVariableEnum::NbdVariableEnum(const NbdVariableDetails &details)
    : NbdAVariableNumeric_impl(details)
{
}

NbdVariableEnum::NbdVariableEnum(const QString &name) : NbdVariableEnum(NbdVariableDetails(name)) {}

Nbd::EVariableType NbdVariableEnum::getVariableType() const
{
  return Nbd::TYPE_ENUM;
}

std::unique_ptr<NbdAVariable> NbdVariableEnum::clone() const
{
  return std::make_unique<NbdVariableEnum>(*this);
}

void NbdVariableEnum::acceptVisitor(NbdIVariableVisitor &visitor) const
{
  visitor.visit(*this);
}

void NbdVariableEnum::acceptMutator(NbdIVariableMutator &mutator)
{
  mutator.mutate(*this);
}

QString NbdVariableEnum::getText(int position) const
{
  const QString name = getCategoryName(position);
  return name.isEmpty() ? NbdAVariableNumeric_impl::getText(position) : name;
}

NbcProportions NbdVariableEnum::getProportions() const
{
  return NbdCategoryCounter::getProportions(getArrayConst(), getNValues());
}

void NbdVariableEnum::copyValuesFrom(const NbdAVariable &other, int otherFirst, int first, int n)
{
  const auto *names = dynamic_cast<const NbdVariableAlpha *>(&other);
  if (!names)
    return NbdAVariableNumeric_impl::copyValuesFrom(other, otherFirst, first, n);
  _checkRange(first, n);
  _checkOtherRange(other, otherFirst, n);
  for (int i = 0; i < n; ++i)
    setValueAsType(first + i, _catalog.getCode(names->getValue(otherFirst + i)));
}

void NbdVariableEnum::_serialize(QDataStream &stream) const
{
  _catalog.serialize(stream);
  NbdAVariableNumeric_impl::_serialize(stream);
}

void NbdVariableEnum::_unserialize(QDataStream &stream, unsigned int version)
{
  NbdEnumCatalog catalog;
  catalog.unserialize(stream);
  NbdAVariableNumeric_impl::_unserialize(stream, version);
  _catalog = catalog;
}

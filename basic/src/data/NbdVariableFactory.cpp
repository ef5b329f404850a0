#include "basic/data/NbdVariableFactory.h"

#include "basic/data/NbdVariableAlpha.h"
#include "basic/data/NbdVariableColor.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableEnum.h"
#include "basic/data/NbdVariableFloat.h"
#include "basic/data/NbdVariableInt32.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/data/NbdVariableMulti.h"
#include "basic/data/NbdVariablePoint3D.h"
#include "basic/data/NbdVariableSelection.h"
#include "basic/error/NbeAssertion.h"

std::unique_ptr<NbdAVariable> NbdVariableFactory::createVariable(Nbd::EVariableType type,
                                                                 const NbdVariableDetails &details)
{
  switch (type) {
    case Nbd::TYPE_FLOAT:
      return std::make_unique<NbdVariableFloat>(details);
    case Nbd::TYPE_DOUBLE:
      return std::make_unique<NbdVariableDouble>(details);
    case Nbd::TYPE_INT32:
      return std::make_unique<NbdVariableInt32>(details);
    case Nbd::TYPE_INT64:
      return std::make_unique<NbdVariableInt64>(details);
    case Nbd::TYPE_BOOLEAN:
      return std::make_unique<NbdVariableSelection>(details);
    case Nbd::TYPE_ALPHA:
      return std::make_unique<NbdVariableAlpha>(details);
    case Nbd::TYPE_MULTI_FLOAT:
      return std::make_unique<NbdVariableMulti>(details);
    case Nbd::TYPE_POINT:
      return std::make_unique<NbdVariablePoint3D>(details);
    case Nbd::TYPE_ENUM:
      return std::make_unique<NbdVariableEnum>(details);
    case Nbd::TYPE_COLOR:
      return std::make_unique<NbdVariableColor>(details);
    default:
      NBE_FAIL(QStringLiteral("no storage for variable type %1").arg(type));
  }
}

std::unique_ptr<NbdAVariableNumeric> NbdVariableFactory::createVariableNumeric(
    Nbd::EVariableType type, const NbdVariableDetails &details)
{
  std::unique_ptr<NbdAVariable> variable = createVariable(type, details);
  if (!variable->isNumeric())
    NBE_FAIL(QStringLiteral("variable type %1 is not numeric").arg(type));
  return std::unique_ptr<NbdAVariableNumeric>(
      static_cast<NbdAVariableNumeric *>(variable.release()));
}

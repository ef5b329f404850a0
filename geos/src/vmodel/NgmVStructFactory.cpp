#include "geos/vmodel/NgmVStructFactory.h"

#include "geos/NgmEnumGlobal.h"
#include "geos/vmodel/NgmVStructCauchy.h"
#include "geos/vmodel/NgmVStructCubic.h"
#include "geos/vmodel/NgmVStructExponential.h"
#include "geos/vmodel/NgmVStructGamma.h"
#include "geos/vmodel/NgmVStructGaussian.h"
#include "geos/vmodel/NgmVStructSincard.h"
#include "geos/vmodel/NgmVStructSpherical.h"
#include "geos/vmodel/NgmVStructStable.h"

namespace {

/// Calls `visitor` with a null pointer of the class that stands for the type. The one place where
/// types and classes meet.
template <class Visitor>
std::unique_ptr<NgmAVStruct> visitClass(const NgmEVStruct &type, Visitor visitor)
{
  switch (type.toEnum()) {
    case NgmEVStruct::EValue::EXPONENTIAL:
      return visitor(static_cast<NgmVStructExponential *>(nullptr));
    case NgmEVStruct::EValue::SPHERICAL:
      return visitor(static_cast<NgmVStructSpherical *>(nullptr));
    case NgmEVStruct::EValue::CUBIC:
      return visitor(static_cast<NgmVStructCubic *>(nullptr));
    case NgmEVStruct::EValue::GAUSSIAN:
      return visitor(static_cast<NgmVStructGaussian *>(nullptr));
    case NgmEVStruct::EValue::SINCARD:
      return visitor(static_cast<NgmVStructSincard *>(nullptr));
    case NgmEVStruct::EValue::STABLE:
      return visitor(static_cast<NgmVStructStable *>(nullptr));
    case NgmEVStruct::EValue::GAMMA:
      return visitor(static_cast<NgmVStructGamma *>(nullptr));
    case NgmEVStruct::EValue::GENERALIZED_CAUCHY:
      return visitor(static_cast<NgmVStructCauchy *>(nullptr));
    default:
      return nullptr;
  }
}

}  // namespace

std::unique_ptr<NgmAVStruct> NgmVStructFactory::createTemplateVStruct(const NgmEVStruct &type)
{
  return visitClass(type, [](auto *type_) -> std::unique_ptr<NgmAVStruct> {
    return std::make_unique<std::remove_pointer_t<decltype(type_)>>();
  });
}

std::unique_ptr<NgmAVStruct> NgmVStructFactory::createVStruct(const NgmEVStruct &type,
                                                              const NgmModelContext &context)
{
  std::unique_ptr<NgmAVStruct> structure = createTemplateVStruct(type);
  if (structure)
    structure->setContext(context);
  return structure;
}

std::unique_ptr<NgmAVStruct> NgmVStructFactory::createVStruct(const NgmAVStruct &structure)
{
  return visitClass(structure.getType(), [&](auto *type_) -> std::unique_ptr<NgmAVStruct> {
    using Class = std::remove_pointer_t<decltype(type_)>;
    return std::make_unique<Class>(static_cast<const Class &>(structure));
  });
}

#include "geos/vmodel/NgmVStructFactory.h"

#include "geos/NgmEnumGlobal.h"
#include "geos/vmodel/NgmVStructBesselJ.h"
#include "geos/vmodel/NgmVStructBesselK.h"
#include "geos/vmodel/NgmVStructCauchy.h"
#include "geos/vmodel/NgmVStructCosexp.h"
#include "geos/vmodel/NgmVStructCubic.h"
#include "geos/vmodel/NgmVStructExponential.h"
#include "geos/vmodel/NgmVStructGamma.h"
#include "geos/vmodel/NgmVStructGaussian.h"
#include "geos/vmodel/NgmVStructMatern0_5.h"
#include "geos/vmodel/NgmVStructMatern1_0.h"
#include "geos/vmodel/NgmVStructMatern1_5.h"
#include "geos/vmodel/NgmVStructMatern2_0.h"
#include "geos/vmodel/NgmVStructOrder1GC.h"
#include "geos/vmodel/NgmVStructOrder3GC.h"
#include "geos/vmodel/NgmVStructOrder5GC.h"
#include "geos/vmodel/NgmVStructPower.h"
#include "geos/vmodel/NgmVStructSincard.h"
#include "geos/vmodel/NgmVStructSpherical.h"
#include "geos/vmodel/NgmVStructSpline.h"
#include "geos/vmodel/NgmVStructSpline2.h"
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
    case NgmEVStruct::EValue::POWER:
      return visitor(static_cast<NgmVStructPower *>(nullptr));
    case NgmEVStruct::EValue::GAUSSIAN:
      return visitor(static_cast<NgmVStructGaussian *>(nullptr));
    case NgmEVStruct::EValue::SINCARD:
      return visitor(static_cast<NgmVStructSincard *>(nullptr));
    case NgmEVStruct::EValue::STABLE:
      return visitor(static_cast<NgmVStructStable *>(nullptr));
    case NgmEVStruct::EValue::GAMMA:
      return visitor(static_cast<NgmVStructGamma *>(nullptr));
    case NgmEVStruct::EValue::BESSEL_J:
      return visitor(static_cast<NgmVStructBesselJ *>(nullptr));
    case NgmEVStruct::EValue::MATERN:
      return visitor(static_cast<NgmVStructBesselK *>(nullptr));
    case NgmEVStruct::EValue::EXPONENTIAL_COSINE:
      return visitor(static_cast<NgmVStructCosexp *>(nullptr));
    case NgmEVStruct::EValue::GENERALIZED_CAUCHY:
      return visitor(static_cast<NgmVStructCauchy *>(nullptr));
    case NgmEVStruct::EValue::LINEAR:
      return visitor(static_cast<NgmVStructOrder1GC *>(nullptr));
    case NgmEVStruct::EValue::SPLINE_GC:
      return visitor(static_cast<NgmVStructSpline *>(nullptr));
    case NgmEVStruct::EValue::SPLINE2_GC:
      return visitor(static_cast<NgmVStructSpline2 *>(nullptr));
    case NgmEVStruct::EValue::THIRD_ORDER_GC:
      return visitor(static_cast<NgmVStructOrder3GC *>(nullptr));
    case NgmEVStruct::EValue::FIFTH_ORDER_GC:
      return visitor(static_cast<NgmVStructOrder5GC *>(nullptr));
    case NgmEVStruct::EValue::MATERN_0_5:
      return visitor(static_cast<NgmVStructMatern0_5 *>(nullptr));
    case NgmEVStruct::EValue::MATERN_1_0:
      return visitor(static_cast<NgmVStructMatern1_0 *>(nullptr));
    case NgmEVStruct::EValue::MATERN_1_5:
      return visitor(static_cast<NgmVStructMatern1_5 *>(nullptr));
    case NgmEVStruct::EValue::MATERN_2_0:
      return visitor(static_cast<NgmVStructMatern2_0 *>(nullptr));
    case NgmEVStruct::EValue::UNKNOWN:
      break;
  }
  return nullptr;
}

/// The types whose default structure passes, in the order of their values.
template <class Test>
QList<NgmEVStruct> typesThat(Test test)
{
  QList<NgmEVStruct> types;
  NgmEVStruct::Iterator iterator = NgmEVStruct::createIterator();
  while (iterator.hasNext()) {
    const NgmEVStruct &type = iterator.next();
    const auto structure = NgmVStructFactory::createTemplateVStruct(type);
    if (structure && test(*structure))
      types << type;
  }
  return types;
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

QList<NgmEVStruct> NgmVStructFactory::getStructureForDegree(int degree, bool tbOnly)
{
  return typesThat([=](const NgmAVStruct &structure) {
    return structure.getIRFDegree() <= degree && (!tbOnly || structure.isSimulatableTB());
  });
}

QList<NgmEVStruct> NgmVStructFactory::getStructureForPotential(int degree)
{
  return typesThat([=](const NgmAVStruct &structure) {
    return structure.isDifferentiable() && structure.getIRFDegree() <= degree;
  });
}

QStringList NgmVStructFactory::getStructureNamesForDegree(int degree, bool tbOnly)
{
  QStringList names;
  for (const NgmEVStruct &type : getStructureForDegree(degree, tbOnly))
    names << type.getLabel();
  return names;
}

QStringList NgmVStructFactory::getStructureNamesAll()
{
  return getStructureNamesForDegree(99, false);
}

QStringList NgmVStructFactory::getStructureNamesStationnary(bool tbOnly)
{
  return getStructureNamesForDegree(-1, tbOnly);
}

QStringList NgmVStructFactory::getStructureNamesIntrinsic()
{
  return getStructureNamesForDegree(0, false);
}

#include "geos/data/NgdDataSetHelper.h"

#include "basic/error/NbeAssertion.h"
#include "geos/data/NgdADataSet.h"

void NgdDataSetHelper::forwardRole(const NgdADataSet &from, NgdADataSet &to,
                                   const QString &fromRole, const QString &toRole)
{
  if (from.getDataProvider() != to.getDataProvider())
    NBE_FAIL(QStringLiteral("Providers should be the same between datasets"));
  for (const NgdVariableDescriptor &descriptor : from.getVariableDescriptors(fromRole)) {
    if (descriptor.isMacro())
      to.assignMacro(toRole, descriptor.getProviderVarId());
    else
      to.assignVariable(toRole, descriptor.getProviderVarId(), true);
  }
}

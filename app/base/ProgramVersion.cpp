#include "app/base/ProgramVersion.h"

namespace orvenal {

QString programVersion()
{
  return QStringLiteral(ORVENAL_VERSION);
}

}  // namespace orvenal

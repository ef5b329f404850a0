#pragma once

#include <QString>

#include <cpl_error.h>

namespace orvenal {

/// While it lives, GDAL keeps its messages on this thread to itself. The first failure is the one
/// that counts: what follows from it says less.
class GdalErrors
{
public:
  GdalErrors()
  {
    CPLErrorReset();
    CPLPushErrorHandlerEx(_receive, this);
  }
  ~GdalErrors() { CPLPopErrorHandler(); }
  GdalErrors(const GdalErrors &) = delete;
  GdalErrors &operator=(const GdalErrors &) = delete;

  bool hasFailed() const { return _hasFailed; }

  /// Of the first failure; of the last warning when nothing failed.
  QString getMessage() const { return _message; }

private:
  static void CPL_STDCALL _receive(CPLErr type, CPLErrorNum, const char *message)
  {
    auto *self = static_cast<GdalErrors *>(CPLGetErrorHandlerUserData());
    if (self->_hasFailed || type < CE_Warning)
      return;
    self->_hasFailed = type >= CE_Failure;
    self->_message = QString::fromUtf8(message);
  }

  QString _message;
  bool _hasFailed = false;
};

}  // namespace orvenal

#pragma once

#include "app/base/UsageError.h"

namespace orvenal {

/// A member of a job is wrong or missing: "job.json: model.structures[0].range: ...".
class JobError : public UsageError
{
public:
  JobError(const QString &file, const QString &path, const QString &reason)
      : UsageError(file + QLatin1String(": ") + path +
                   (path.isEmpty() ? QString() : QStringLiteral(": ")) + reason),
        _path(path),
        _reason(reason)
  {
  }

  /// JSON path of the member; empty for the whole job.
  const QString &getPath() const { return _path; }

  /// The message without file and path.
  const QString &getReason() const { return _reason; }

  void raise() const override { throw *this; }
  JobError *clone() const override { return new JobError(*this); }

private:
  QString _path;
  QString _reason;
};

}  // namespace orvenal

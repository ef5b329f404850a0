#include "app/io/TextFile.h"

#include "app/console/Interruption.h"
#include "basic/error/NbeUserError.h"

#include <QFile>
#include <QObject>

#include <fcntl.h>
#include <unistd.h>
#include <cerrno>
#include <cstring>

namespace orvenal {

TextFile::TextFile(const QString &path, const QString &shownName)
    : _shownName(shownName),
      _descriptor(::open(QFile::encodeName(path).constData(),
                         O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666))
{
  if (_descriptor < 0)
    _fail();
}

TextFile::~TextFile()
{
  if (_descriptor >= 0)
    ::close(_descriptor);
}

void TextFile::flushSome()
{
  constexpr int enough = 1 << 20;
  if (_text.size() > enough)
    _flush();
}

void TextFile::finish()
{
  _flush();
  const int descriptor = _descriptor;
  _descriptor = -1;
  if (::close(descriptor) != 0)
    _fail();
}

/// A disk that fills up takes a part first, and says why when it is asked to take the rest.
void TextFile::_flush()
{
  Interruption::check();
  const char *rest = _text.constData();
  const char *end = rest + _text.size();
  while (rest < end) {
    const ssize_t written = ::write(_descriptor, rest, std::size_t(end - rest));
    if (written < 0 && errno != EINTR)
      _fail();
    rest += written < 0 ? 0 : written;
  }
  _text.resize(0);
}

void TextFile::_fail() const
{
  throw NbeUserError(QObject::tr("%1: cannot be written: %2")
                         .arg(_shownName, QString::fromLocal8Bit(std::strerror(errno))));
}

}  // namespace orvenal

#include "app/commands/Program.h"
#include "app/console/Console.h"
#include "app/console/Interruption.h"
#include "app/io/GdalMessages.h"
#include "app/io/NetcdfWriter.h"

#include <QApplication>

#include <fcntl.h>
#include <langinfo.h>
#include <malloc.h>
#include <unistd.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>

namespace {

/// Qt's own remarks (on fonts, on the session's folders) are no business of the user, unless
/// QT_LOGGING_RULES asks for them.
void receive(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
  const bool isRemark = context.category && qstrcmp(context.category, "default") == 0 &&
                        (type == QtDebugMsg || type == QtInfoMsg || type == QtWarningMsg);
  if (!isRemark || qEnvironmentVariableIsSet("QT_LOGGING_RULES"))
    std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, text)));
}

/// In a locale without an encoding (containers often have none) names of files could only be ASCII.
void requireUtf8()
{
  std::setlocale(LC_CTYPE, "");
  if (qstrcmp(nl_langinfo(CODESET), "UTF-8") != 0)
    qputenv("LC_ALL", "C.UTF-8");
}

/// Freed buffers stay with the process, or every large one is paid for in page faults again.
void keepFreedMemory()
{
  mallopt(M_MMAP_THRESHOLD, 1 << 30);
  mallopt(M_TRIM_THRESHOLD, 1 << 30);
}

/// A file that the program opens would take the place of a standard stream that is closed, and what
/// is printed would go into it.
void openStandardStreams()
{
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    if (fcntl(descriptor, F_GETFD) < 0 && open("/dev/null", O_RDWR) < 0)
      std::abort();
  }
}

}  // namespace

int main(int argc, char **argv)
{
  openStandardStreams();
  qputenv("QT_QPA_PLATFORM", "offscreen");  // pictures are drawn without a display
  keepFreedMemory();
  requireUtf8();
  qInstallMessageHandler(receive);
  const QApplication application(argc, argv);
  std::setlocale(LC_NUMERIC, "C");
  orvenal::Interruption::install();
  orvenal::logGdalMessages();
  orvenal::prepareNetcdf();
  orvenal::Console console;
  return orvenal::Program().run(application.arguments().mid(1), console);
}

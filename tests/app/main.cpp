#include <QApplication>

#include <gtest/gtest.h>

#include <clocale>

/// Qt's offscreen platform keeps its screen at the end of a program; the other programs of the
/// tests look for leaks.
extern "C" const char *__asan_default_options()
{
  return "detect_leaks=0";
}

int main(int argc, char **argv)
{
  qputenv("QT_QPA_PLATFORM", "offscreen");
  if (!qEnvironmentVariableIsSet("ASAN_OPTIONS"))
    qputenv("ASAN_OPTIONS", __asan_default_options());  // for the programs that tests start
  const QApplication application(argc, argv);
  std::setlocale(LC_NUMERIC, "C");
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}

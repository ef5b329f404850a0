#include "basic/error/NbeGuard.h"

#include "basic/error/NbeMemoryError.h"
#include "basic/error/NbeProgrammingError.h"

#include <exception>
#include <new>
#include <typeinfo>

namespace {

QString describe(const char *name, const std::exception &exception)
{
  const char *what = exception.what();
  return QStringLiteral("%1: %2").arg(
      QString::fromLatin1(name),
      what ? QString::fromUtf8(what) : QStringLiteral("Unknown exception"));
}

}  // namespace

void NbeGuard::run(const std::function<void()> &body)
{
  try {
    body();
  } catch (const NbeError &) {
    throw;
  } catch (const std::bad_alloc &exception) {
    throw NbeMemoryError(describe("std::bad_alloc", exception));
  } catch (const std::bad_cast &exception) {
    throw NbeProgrammingError(describe("std::bad_cast", exception));
  } catch (const std::bad_typeid &exception) {
    throw NbeProgrammingError(describe("std::bad_typeid", exception));
  } catch (const std::bad_exception &exception) {
    throw NbeProgrammingError(describe("std::bad_exception", exception));
  } catch (const std::exception &exception) {
    throw NbeError(NbeError::UNKNOWN, describe("std::exception", exception));
  } catch (...) {
    throw NbeError(NbeError::UNKNOWN, QStringLiteral("Unknown exception."));
  }
}

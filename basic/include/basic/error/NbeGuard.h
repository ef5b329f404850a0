#pragma once

#include <functional>

/// Runs code on behalf of a thread and lets only errors of the NbeError family out.
namespace NbeGuard {

/// Calls `body`. Errors of the NbeError family pass unchanged. Others are translated, %1 being
/// what(): std::bad_alloc to NbeMemoryError "std::bad_alloc: %1"; std::bad_cast, std::bad_typeid
/// and std::bad_exception to NbeProgrammingError with their name in front; any other std::exception
/// to NbeError of type UNKNOWN "std::exception: %1"; anything else to NbeError of type UNKNOWN
/// "Unknown exception.".
void run(const std::function<void()> &body);

}  // namespace NbeGuard

#pragma once

namespace orvenal {

/// GDAL's own way to say something is the standard error. Where the program asks for an outcome it
/// keeps errors for its own messages (GdalErrors); of what comes besides, failures are logged, and
/// remarks are not unless QT_LOGGING_RULES asks for them ("orvenal.gdal.info=true").
void logGdalMessages();

}  // namespace orvenal

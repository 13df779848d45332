#pragma once

#include "tools/afconvert/ConverterOptions.h"

namespace zarnet {

/// Converts one file as the command line says. Uses a second and a third thread for reading, decoding and
/// resampling; returns when the output is complete. Raises a subclass of std::exception on every failure, an
/// input with samples that are not finite included; an output file that was begun is then removed.
void convert(const ConverterOptions& options);

}  // namespace zarnet

#pragma once

namespace zarnet::benchmarks {

/// Physical memory that this process holds now, and the most that it held since `resetPeakMemory`, in bytes.
/// Both count the pages of shared libraries too.
double residentMemory();
double peakMemory();
void resetPeakMemory();

}  // namespace zarnet::benchmarks

#pragma once

#include <string>

namespace zarnet {

/// The content of a configuration file for libpulse that reads what libpulse would read without it (the file
/// that PULSE_CLIENTCONFIG names, or else the user's, or else the system's, and the parts in the folder
/// beside that), and then turns shared memory off.
///
/// Shared memory gains next to nothing for two channels of sound, and is the one thing that can hang: while
/// the two agree on it, libpulse spins for ever when the server dies.
std::string pulseConfiguration();

/// Lets every connection that libpulse makes in this process use that configuration, through
/// PULSE_CLIENTCONFIG. The file has no place on disk and goes with the process; a child can read it too, as
/// long as this process lives. Nothing is changed where the system has no such files. Changes the
/// environment, so it must be called before any thread starts.
void usePulseConfiguration();

}  // namespace zarnet

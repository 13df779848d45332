#pragma once

#include <filesystem>
#include <string_view>
#include <vector>

namespace zarnet {

/// What a command line asks for.
struct ConverterOptions {
  enum class Target {
    wave,  ///< 48 kHz stereo float in a WAVE file, best resampling
    caf,   ///< 48 kHz stereo float in a CAF file, standard resampling
    aac,   ///< AAC in an MPEG-4 audio file, at the rate and with the channels of the input
  };

  std::filesystem::path input;   ///< the bytes of the argument, whatever they are
  std::filesystem::path output;  ///< likewise; its extension has no meaning
  Target target = Target::wave;
  int bitsPerSecond = 0;  ///< of `aac` alone: 8000 to 576000, all channels together
};

/// Reads the arguments behind the program's name. Exactly these three forms are understood, in this order of
/// options:
///
///     IN OUT -f WAVE -d LEF32@48000 -c 2 -r 127
///     IN OUT -f m4af -d aac -b BITS-PER-SECOND -q 127 -s 0
///     IN OUT -f caff -d LEF32@48000 -c 2
///
/// Raises std::invalid_argument with a usage line for everything else.
ConverterOptions parseOptions(const std::vector<std::string_view>& arguments);

}  // namespace zarnet

#include "tools/afconvert/ConverterOptions.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>

namespace zarnet {

namespace {

constexpr const char* usage =
    "usage: afconvert IN OUT -f WAVE -d LEF32@48000 -c 2 -r 127"
    " | IN OUT -f m4af -d aac -b BITS-PER-SECOND -q 127 -s 0"
    " | IN OUT -f caff -d LEF32@48000 -c 2";

/// Stands in a form where the bitrate is.
constexpr std::string_view bitrate = "BITS-PER-SECOND";

// What a 48 kHz stereo stream of AAC can hold: 6144 bits in each channel for every 1024 frames.
constexpr unsigned highestBitrate = 6144 * 2 * 48000 / 1024;
constexpr unsigned lowestBitrate = 8000;

struct Form {
  ConverterOptions::Target target;
  std::vector<std::string_view> words;  ///< behind the two file names
};

const std::vector<Form>& forms() {
  static const std::vector<Form> all = {
      {ConverterOptions::Target::wave, {"-f", "WAVE", "-d", "LEF32@48000", "-c", "2", "-r", "127"}},
      {ConverterOptions::Target::aac, {"-f", "m4af", "-d", "aac", "-b", bitrate, "-q", "127", "-s", "0"}},
      {ConverterOptions::Target::caf, {"-f", "caff", "-d", "LEF32@48000", "-c", "2"}},
  };
  return all;
}

std::optional<int> parsedBitrate(std::string_view text) {
  unsigned value = 0;  // unsigned, so that no sign is taken
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  if (value < lowestBitrate || value > highestBitrate) return std::nullopt;
  return static_cast<int>(value);
}

}  // namespace

ConverterOptions parseOptions(const std::vector<std::string_view>& arguments) {
  if (arguments.size() < 2) throw std::invalid_argument(usage);
  ConverterOptions options{arguments[0], arguments[1]};
  const auto accepted = [&](std::string_view given, std::string_view expected) {
    if (expected != bitrate) return given == expected;
    const std::optional<int> value = parsedBitrate(given);
    options.bitsPerSecond = value.value_or(0);
    return value.has_value();
  };
  for (const Form& form : forms()) {
    if (std::equal(arguments.begin() + 2, arguments.end(), form.words.begin(), form.words.end(), accepted)) {
      options.target = form.target;
      return options;
    }
  }
  throw std::invalid_argument(usage);
}

}  // namespace zarnet

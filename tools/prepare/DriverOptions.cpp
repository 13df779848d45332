#include "tools/prepare/DriverOptions.h"

#include "prepare/Codecs.h"

#include <charconv>
#include <cstdio>
#include <string_view>
#include <system_error>

#include <getopt.h>

namespace zarnet {

namespace {

std::optional<std::int64_t> parsedInteger(std::string_view text) {
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::string bitrateList(std::string_view codec) {
  std::string list;
  for (const std::int64_t bitrate : acceptedBitrates(codec))
    list += " " + std::to_string(bitrate);
  return list;
}

void complain(const char* problem) {
  std::fprintf(stderr, "zarnet-prepare: %s\n", problem);
}

}  // namespace

std::optional<DriverOptions> parsedOptions(int count, char** values) {
  const option known[] = {
      {"codec", required_argument, nullptr, 'c'},
      {"bitrate", required_argument, nullptr, 'b'},
      {"no-match", no_argument, nullptr, 'n'},
      {"output", required_argument, nullptr, 'o'},
      {"by-path", no_argument, nullptr, 'p'},
      {"resources", required_argument, nullptr, 'r'},
      {"help", no_argument, nullptr, 'h'},
      {"version", no_argument, nullptr, 'v'},
      {},
  };
  DriverOptions options;
  for (int found = 0; (found = getopt_long(count, values, "", known, nullptr)) != -1;) {
    switch (found) {
      case 'c':
        options.codec = optarg;
        break;
      case 'b': {
        const std::optional<std::int64_t> bitrate = parsedInteger(optarg);
        if (!bitrate) {
          complain("the bitrate is not a whole number");
          return std::nullopt;
        }
        options.bitrate = *bitrate;
        break;
      }
      case 'n':
        options.match = false;
        break;
      case 'o':
        options.output = optarg;
        break;
      case 'p':
        options.byPath = true;
        break;
      case 'r':
        options.resources = optarg;
        break;
      case 'h':
        options.task = DriverOptions::Task::help;
        return options;
      case 'v':
        options.task = DriverOptions::Task::version;
        return options;
      default:  // told by getopt_long
        return std::nullopt;
    }
  }
  if (options.output == "" || options.resources == "") {
    complain("the name of a folder is empty");
    return std::nullopt;
  }
  if (options.byPath && !options.output) {
    complain("--by-path says where in --output");
    return std::nullopt;
  }
  options.files.assign(values + optind, values + count);
  if (options.files.empty()) {
    complain("no file is given");
    return std::nullopt;
  }
  return options;
}

std::string usageText() {
  return "usage: zarnet-prepare [--codec AAC|MP3|\"Ogg Vorbis\"] [--bitrate KBPS] [--no-match] [--output DIR"
         " [--by-path]] [--resources DIR] FILE...\n";
}

std::string helpText() {
  return usageText() + R"(
Prepares a blind comparison of each lossless FILE with its lossy encoding and prints a check record of it, a
JSON object. What is being done is told on standard error.

  --codec NAME     "AAC", "MP3" or "Ogg Vorbis"; AAC when it is not given
  --bitrate KBPS   256 when it is not given;
                   AAC, Ogg Vorbis:)" +
         bitrateList("AAC") + R"(
                   MP3:)" +
         bitrateList("MP3") + R"(
  --no-match       keep both versions at their own loudness
  --output DIR     leave the working original, the encoding, its decoding and the check record of each FILE
                   in the folder DIR/NAME/CODEC-KBPS, where NAME is the FILE's name without its extension,
                   followed by a number where two FILEs share one; a set that is there already is replaced as
                   a whole once the new one is complete, and nothing else in DIR is touched
  --by-path        with --output: take the FILE's whole path for NAME, so that equal names never meet, not
                   even those of other calls at the same time
  --resources DIR  where lame, afconvert and vorbis-tool are
  --help           print this text
  --version        print the version
  --               end the options: names of files follow, even with a leading hyphen

Many files on many cores:
  find MUSIC -name '*.flac' -print0 | xargs -0 -P $(nproc) -n 1 zarnet-prepare --by-path --output DIR

Ctrl-C cancels and removes what was not finished. Exit status: 0 when every file was prepared, 1 when one was
not, 2 for a wrong command line, 130 after Ctrl-C.
)";
}

}  // namespace zarnet

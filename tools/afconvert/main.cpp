// afconvert: decodes audio files, converts them to 48 kHz stereo, encodes AAC.

#include "tools/OneLine.h"
#include "tools/afconvert/Convert.h"
#include "tools/afconvert/Options.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>

int main(int count, char** values) {
  // A limit on the size of files then fails the write, which is reported, instead of ending the process.
  std::signal(SIGXFSZ, SIG_IGN);
  try {
    zarnet::convert(zarnet::parseOptions({values + 1, values + count}));
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", zarnet::oneLine(error.what()).c_str());
    return EXIT_FAILURE;
  }
}

// afconvert: decodes audio files, converts them to 48 kHz stereo, encodes AAC.

#include "tools/afconvert/Convert.h"
#include "tools/afconvert/ConverterOptions.h"
#include "tools/support/Tool.h"

int main(int count, char** values) {
  return zarnet::runConverter([&] { zarnet::convert(zarnet::parseOptions({values + 1, values + count})); });
}

#pragma once

#include "tests/support/Programs.h"
#include "tests/support/ReadSignal.h"

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace zarnet::test {

using Words = std::vector<std::string>;

inline const Words toWave = {"-f", "WAVE", "-d", "LEF32@48000", "-c", "2", "-r", "127"};
inline const Words toCaf = {"-f", "caff", "-d", "LEF32@48000", "-c", "2"};

inline Words toAac(int kbps) {
  return {"-f", "m4af", "-d", "aac", "-b", std::to_string(kbps * 1000), "-q", "127", "-s", "0"};
}

/// The command line of a conversion.
inline Words afconvertLine(const std::filesystem::path& input, const std::filesystem::path& output,
                           Words options) {
  options.insert(options.begin(), {resource("afconvert").string(), input.string(), output.string()});
  return options;
}

/// Converts, fails the test unless the program succeeds and keeps silent, and returns where the output is.
inline std::filesystem::path convertFile(const std::filesystem::path& input,
                                         const std::filesystem::path& output, const Words& options) {
  const ProgramResult result = runProgram(afconvertLine(input, output, options));
  EXPECT_EQ(result.status, 0) << input;
  EXPECT_EQ(result.output + result.errors, "");
  return output;
}

}  // namespace zarnet::test

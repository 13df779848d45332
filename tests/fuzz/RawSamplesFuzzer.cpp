// Any bytes are a raw sample file: whole frames come back from the CAF file bit for bit, anything else is
// refused and leaves the chunks before it.

#include "audio/AppError.h"
#include "audio/RawSamples.h"
#include "media/AudioFileReader.h"
#include "tests/fuzz/Fuzzing.h"

#include <cstring>
#include <vector>

#include <unistd.h>

using zarnet::fuzz::expect;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::filesystem::path raw = zarnet::fuzz::memoryFile();
  const std::filesystem::path caf =
      std::filesystem::temp_directory_path() / ("zarnet-fuzz-" + std::to_string(getpid()) + ".caf");
  zarnet::FileHandle::createForWriting(raw).write(data, size);

  bool accepted = true;
  try {
    zarnet::rawPCMToCAF(raw, caf);
  } catch (const zarnet::AppError&) {
    accepted = false;
  }
  expect(accepted == (size % 8 == 0), "whole frames are accepted, anything else is not");

  constexpr std::size_t chunkBytes = 32'768;
  const std::size_t frames = (accepted ? size : size / chunkBytes * chunkBytes) / 8;
  std::vector<float> left(frames + 1);
  std::vector<float> right(frames + 1);
  float* const planes[] = {left.data(), right.data()};
  zarnet::AudioFileReader file(caf);
  std::filesystem::remove(caf);
  expect(file.length() == static_cast<std::int64_t>(frames), "every frame is counted");
  expect(file.read(planes, file.length() + 1) == file.length(), "every frame arrives");
  for (std::size_t i = 0; i < frames; ++i) {
    expect(std::memcmp(&left[i], data + 8 * i, 4) == 0, "the left samples are the same");
    expect(std::memcmp(&right[i], data + 8 * i + 4, 4) == 0, "the right samples are the same");
  }
  return 0;
}

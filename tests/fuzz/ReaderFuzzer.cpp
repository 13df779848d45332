// Any bytes are an audio file: it opens or is refused with a sentence, and what it holds is read to the end.

#include "media/AudioFileReader.h"
#include "media/LinearPCM.h"
#include "system/PlatformError.h"
#include "tests/fuzz/Fuzzing.h"

#include <cmath>
#include <vector>

using zarnet::fuzz::expect;

namespace {

/// Reads to the end in pieces and returns the number of frames that arrived.
std::int64_t readAll(zarnet::AudioFileReader& reader) {
  const std::uint32_t channels = reader.processingChannels();
  const std::int64_t piece = std::max(1u, 65'536 / channels);
  std::vector<float> samples(static_cast<std::size_t>(piece) * channels);
  std::vector<float*> planes(channels);
  for (std::uint32_t channel = 0; channel < channels; ++channel)
    planes[channel] = samples.data() + channel * piece;
  std::int64_t total = 0;
  for (std::int64_t delivered = piece; delivered == piece; total += delivered)
    delivered = reader.read(planes.data(), piece);
  expect(reader.read(planes.data(), piece) == 0, "nothing follows the end");
  return total;
}

void readFile(const std::filesystem::path& path) {
  zarnet::AudioFileReader reader(path);
  expect(reader.processingChannels() > 0, "there is a channel");
  expect(std::isfinite(reader.processingRate()) && reader.processingRate() > 0, "there is a rate");
  const std::int64_t length = reader.length();
  expect(length >= 0, "no length is negative");
  const std::int64_t read = readAll(reader);
  if (zarnet::findLinearPCM(zarnet::FileHandle::openOrdinaryFile(path)))
    expect(read == length, "linear PCM delivers what it counts");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::filesystem::path path = zarnet::fuzz::memoryFile();
  zarnet::FileHandle::createForWriting(path).write(data, size);
  try {
    readFile(path);
  } catch (const zarnet::PlatformError& error) {
    const std::string_view sentence = error.what();
    expect(sentence.starts_with("“") && sentence.ends_with("."), "an error is a sentence about the file");
  }
  return 0;
}

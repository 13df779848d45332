#include "tests/support/ReadSignal.h"

#include "platform/AudioFileReader.h"

#include <gtest/gtest.h>

namespace zarnet::test {

Signal readSignal(const std::filesystem::path& path) {
  constexpr std::size_t piece = 7'919;
  AudioFileReader reader(path);
  Signal signal{reader.processingRate(), std::vector<std::vector<float>>(reader.processingChannels())};
  std::vector<float*> targets(signal.planes.size());
  std::size_t frames = 0;
  for (std::int64_t delivered = piece; delivered > 0; frames += static_cast<std::size_t>(delivered)) {
    for (std::size_t channel = 0; channel < targets.size(); ++channel) {
      signal.planes[channel].resize(frames + piece);
      targets[channel] = signal.planes[channel].data() + frames;
    }
    delivered = reader.read(targets.data(), piece);
  }
  for (auto& plane : signal.planes)
    plane.resize(frames);
  EXPECT_EQ(reader.length(), static_cast<std::int64_t>(frames)) << path;
  return signal;
}

}  // namespace zarnet::test

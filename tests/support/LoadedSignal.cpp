#include "tests/support/LoadedSignal.h"

#include "platform/AudioFileWriter.h"
#include "tests/support/ScratchFolder.h"

#include <cstring>

namespace zarnet::test {

std::shared_ptr<const PCM> loaded(const Signal& signal) {
  const ScratchFolder scratch;
  AudioFileWriter writer(scratch / "signal.caf", signal.rate,
                         static_cast<std::uint32_t>(signal.planes.size()));
  const float* const planes[] = {signal.planes.at(0).data(), signal.planes.at(1).data()};
  writer.write(planes, signal.count());
  writer.finish();
  return std::make_shared<const PCM>(scratch / "signal.caf");
}

std::vector<std::uint32_t> bits(const float* samples, std::int64_t count) {
  std::vector<std::uint32_t> result(static_cast<std::size_t>(count));
  std::memcpy(result.data(), samples, result.size() * sizeof(std::uint32_t));
  return result;
}

}  // namespace zarnet::test

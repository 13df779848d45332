// Integrated loudness after ITU-R BS.1770. The result is defined to the last bit: every operation below
// stands in its fixed order, rounded to 64 bits one at a time.

#include "audio/PCM.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <utility>
#include <vector>

namespace zarnet {

namespace {

/// Left and right side by side: what one channel computes never meets the other's.
using Pair = double __attribute__((vector_size(16)));

constexpr std::int64_t blockFrames = 4'800;             // 100 ms
constexpr std::size_t blocksPerGate = 4;                // 400 ms
constexpr double gateFrames = 19'200.0;                 // in a gating block
constexpr double absoluteGate = 1.1724653045822981e-7;  // energy of −70 LUFS
constexpr double relativeGate = 0.1;                    // −10 LU
constexpr double lowestEnergy = 1e-12;
constexpr double loudnessOffset = -0.691;  // LU, BS.1770 equation 2
constexpr double nothingGated = -120.0;    // LUFS

/// The K-weighting of BS.1770 for 48 kHz as two biquads in transposed direct form II: a high shelf (s1, s2)
/// that feeds a high pass (s3, s4).
struct KWeighting {
  Pair s1{}, s2{}, s3{}, s4{};

  Pair filter(Pair x) {
    const Pair y1 = 1.53512485958697 * x + s1;
    const Pair y2 = y1 + s3;
    s3 = (1.99004745483398 * y2 - (y1 + y1)) + s4;
    s4 = y1 + (-0.99007225036621 * y2);
    s1 = s2 + (-2.69169618940638 * x + 1.69065929318241 * y1);
    s2 = 1.19839281085285 * x + (-0.73248077421585 * y1);
    return y2;
  }

  /// Clears a channel that has rung out in silence, before its state reaches the subnormal numbers, which
  /// many processors compute slowly. No result changes: the square of such an output is 0 already, and beside
  /// the smallest sample that is not 0 (1.4e-45) such a state is lost in rounding.
  void clearRungOut() {
    constexpr double limit = 1e-200;
    const auto small = [](Pair s) { return (s < limit) & (s > -limit); };
    const auto rungOut = small(s1) & small(s2) & small(s3) & small(s4);
    for (Pair* const s : {&s1, &s2, &s3, &s4})
      *s = rungOut ? Pair{} : *s;
  }
};

/// The sum of the squared weighted samples of each 100 ms: all of the left channel's, then all of the
/// right's. The last block may be partial.
std::vector<double> blockEnergies(const PCM& signal) {
  std::vector<double> energies(static_cast<std::size_t>((signal.count + blockFrames - 1) / blockFrames));
  KWeighting weighting;
  // The right squares of a block wait until its left sum is complete, and are added while the next block is
  // filtered: the filter waits for its own results, so these additions cost next to nothing there.
  std::array<double, blockFrames> rightSquares{};
  std::size_t frames = 0;
  double energy = 0;
  for (std::size_t block = 0; block < energies.size(); ++block) {
    const std::int64_t start = static_cast<std::int64_t>(block) * blockFrames;
    const float* const left = signal.left + start;
    const float* const right = signal.right + start;
    frames = static_cast<std::size_t>(std::min(blockFrames, signal.count - start));
    double previous = std::exchange(energy, 0.0);
    for (std::size_t i = 0; i < frames; ++i) {
      const Pair weighted = weighting.filter(Pair{left[i], right[i]});
      const Pair squared = weighted * weighted;
      energy += squared[0];
      previous += std::exchange(rightSquares[i], squared[1]);
    }
    weighting.clearRungOut();
    if (block > 0)
      energies[block - 1] = std::accumulate(rightSquares.begin() + frames, rightSquares.end(), previous);
  }
  energies.back() = std::accumulate(rightSquares.begin(), rightSquares.begin() + frames, energy);
  return energies;
}

double sum(const std::vector<double>& values) {
  return std::accumulate(values.begin(), values.end(), 0.0);
}

double mean(const std::vector<double>& values) {
  return sum(values) / static_cast<double>(values.size());
}

/// The mean energy of every 400 ms that passes the absolute gate, or of a shorter signal as a whole.
std::vector<double> gatedEnergies(const std::vector<double>& blocks, std::int64_t count) {
  if (blocks.size() < blocksPerGate) return {sum(blocks) / static_cast<double>(count)};
  std::vector<double> gated;
  for (std::size_t j = 0; j + blocksPerGate <= blocks.size(); ++j) {
    const double energy = (((blocks[j] + blocks[j + 1]) + blocks[j + 2]) + blocks[j + 3]) / gateFrames;
    if (energy > absoluteGate) gated.push_back(energy);
  }
  return gated;
}

}  // namespace

double PCM::loudness() const {
  std::vector<double> gated = gatedEnergies(blockEnergies(*this), count);
  if (gated.empty()) return nothingGated;
  const double threshold = mean(gated) * relativeGate;
  std::erase_if(gated, [&](double energy) { return !(energy >= threshold); });
  if (gated.empty()) return nothingGated;
  return 10 * std::log10(std::max(mean(gated), lowestEnergy)) + loudnessOffset;
}

}  // namespace zarnet

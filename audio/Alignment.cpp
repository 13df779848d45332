#include "audio/Alignment.h"

#include "audio/VectorMath.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace zarnet {

namespace {

constexpr std::int64_t shortestSearched = 15'001;                         // frames
constexpr std::array<double, 4> anchorFractions = {0.1, 0.25, 0.5, 0.7};  // of the length
constexpr std::int64_t anchorFromStart = 3'000;                           // frames
constexpr std::int64_t anchorFromEnd = 12'000;                            // frames
constexpr float minimumAnchorEnergy = 1e-8f;
constexpr std::int64_t coarseStep = 8;  // frames between coarse samples, and between coarse lags
constexpr std::int64_t coarseSamples = 1'024;
constexpr std::int64_t coarseReach = 2'400;  // frames
constexpr double coarseMargin = 1e-8;        // by which a lag must beat the winner so far
constexpr std::int64_t fineSamples = 8'192;
constexpr std::int64_t fineReach = 8;  // frames
constexpr double energyProductFloor = 1e-30;
constexpr double acceptance = 0.45;

struct Match {
  std::int64_t lag;
  double score;
};

/// Every `coarseStep`-th sample in a row of its own: the search then reads memory in order.
template <std::size_t size>
std::array<float, size> decimated(const float* samples) {
  std::array<float, size> row;
  for (std::size_t k = 0; k < size; ++k)
    row[k] = samples[static_cast<std::int64_t>(k) * coarseStep];
  return row;
}

/// Normalised correlation of two rows of `count` samples, the first with the energy given.
double correlation(const float* original, float originalEnergy, const float* lossy, std::int64_t count) {
  const double product = dotProduct(original, lossy, count);
  const double energies = double{originalEnergy} * double{sumOfSquares(lossy, count)};
  return product / std::sqrt(std::max(energies, energyProductFloor));
}

/// Where the loudest candidate excerpt of the original starts; negative when all of them are silent.
std::int64_t loudestAnchor(const float* original, std::int64_t count) {
  std::int64_t anchor = -1;
  float best = 0;
  for (const double fraction : anchorFractions) {
    auto position = static_cast<std::int64_t>(static_cast<double>(count) * fraction);
    position = std::max(std::min(position, count - anchorFromEnd), anchorFromStart);
    const float energy = sumOfSquares(decimated<coarseSamples>(original + position).data(), coarseSamples);
    if (energy > best) {
      best = energy;
      anchor = position;
    }
  }
  return best > minimumAnchorEnergy ? anchor : -1;
}

/// The best lag among the multiples of `coarseStep`; lag 0 unless another is clearly better. Both pointers
/// stand at the anchor.
std::int64_t coarseLag(const float* original, const float* lossy) {
  const auto excerpt = decimated<coarseSamples>(original);
  const auto range = decimated<coarseSamples + 2 * coarseReach / coarseStep>(lossy - coarseReach);
  const float energy = sumOfSquares(excerpt.data(), coarseSamples);
  const auto score = [&](std::int64_t lag) {
    return correlation(excerpt.data(), energy, range.data() + (lag + coarseReach) / coarseStep,
                       coarseSamples);
  };
  Match winner = {0, score(0)};
  for (std::int64_t lag = -coarseReach; lag <= coarseReach; lag += coarseStep) {
    const double candidate = score(lag);
    if (candidate > winner.score + coarseMargin) winner = {lag, candidate};
  }
  return winner.lag;
}

/// The best single lag around a coarse one.
Match fineMatch(const float* original, const float* lossy, std::int64_t coarse) {
  const float energy = sumOfSquares(original, fineSamples);
  Match winner = {coarse, -1.0};
  for (std::int64_t lag = coarse - fineReach; lag <= coarse + fineReach; ++lag) {
    const double candidate = correlation(original, energy, lossy + lag, fineSamples);
    if (candidate > winner.score) winner = {lag, candidate};
  }
  return winner;
}

}  // namespace

Alignment alignment(const PCM& original, const PCM& lossy) {
  const std::int64_t count = std::min(original.count, lossy.count);
  if (count < shortestSearched) return {0, 1.0};
  const std::int64_t anchor = loudestAnchor(original.left, count);
  if (anchor < 0) return {0, 1.0};
  const std::int64_t coarse = coarseLag(original.left + anchor, lossy.left + anchor);
  const Match match = fineMatch(original.left + anchor, lossy.left + anchor, coarse);
  // Rounding of the 32-bit sums can lift a perfect match above 1 by a few parts in ten million.
  return {match.score > acceptance ? match.lag : 0, std::min(match.score, 1.0)};
}

}  // namespace zarnet

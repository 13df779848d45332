// The results image of 200 tracks, titles of one and two lines.

#include "benchmarks/Memory.h"
#include "results/ResultsImage.h"

#include <QGuiApplication>
#include <QtEndian>
#include <cstdlib>
#include <vector>

#include <benchmark/benchmark.h>

namespace zarnet::benchmarks {
namespace {

std::vector<TrackResult> answers(int count) {
  std::vector<TrackResult> list;
  for (int i = 0; i < count; ++i) {
    list.push_back(
        {i % 5 == 0
             ? QStringLiteral("Orchestra of the North - Symphony No. %1 in E minor, Allegro energico").arg(i)
             : QStringLiteral("Ensemble Nord - Harbour at Dawn %1").arg(i),
         QStringLiteral("%1").arg(QStringList{"A", "B", "same"}[i % 3]), QString(i % 2 == 0 ? u'A' : u'B')});
  }
  return list;
}

/// "besides_MB" is the most that drawing takes beyond the bitmap.
void resultsImage(benchmark::State& state) {
  const std::vector<TrackResult> list = answers(static_cast<int>(state.range(0)));
  resetPeakMemory();
  const double before = residentMemory();
  QByteArray file;
  for ([[maybe_unused]] auto _ : state) {
    file.clear();
    file = renderResultsPNG(list, QStringLiteral("Ogg Vorbis"), 128, true);
  }
  constexpr qsizetype heightInHeader = 20;
  const double bitmap = 4000.0 * qFromBigEndian<quint32>(file.constData() + heightInHeader);
  state.counters["bitmap_MB"] = bitmap / 1e6;
  state.counters["file_MB"] = static_cast<double>(file.size()) / 1e6;
  state.counters["besides_MB"] = (peakMemory() - before - bitmap) / 1e6;
}
BENCHMARK(resultsImage)->Arg(200)->Arg(12)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace
}  // namespace zarnet::benchmarks

int main(int argc, char** argv) {
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  const QGuiApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}

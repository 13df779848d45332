#include "benchmarks/TwentyMinutes.h"
#include "media/AudioFileReader.h"
#include "system/FileHandle.h"
#include "tests/support/Programs.h"

#include <filesystem>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>

namespace zarnet::benchmarks {
namespace {

/// The 20 minutes in another form, made by ffmpeg and removed at the end of the scope.
class Converted {
 public:
  Converted(const std::string& name, const std::string& options)
      : path(twentyMinutes().parent_path() / name) {
    const std::string source = twentyMinutes().filename().string();
    test::runScript(path.parent_path(), "ffmpeg -i " + source + " " + options + " " + name);
  }
  ~Converted() { std::filesystem::remove(path); }
  Converted(const Converted&) = delete;
  Converted& operator=(const Converted&) = delete;

  const std::filesystem::path path;
};

/// Opens the file and reads all of it into fresh memory, whose page faults count too.
void load(benchmark::State& state, const std::filesystem::path& path) {
  for ([[maybe_unused]] auto _ : state) {
    AudioFileReader reader(path);
    auto buffer = std::make_unique_for_overwrite<float[]>(static_cast<std::size_t>(2 * reader.length()));
    float* const planes[] = {buffer.get(), buffer.get() + reader.length()};
    if (reader.read(planes, reader.length()) != reader.length()) state.SkipWithError("the file ended early");
    state.PauseTiming();
    buffer.reset();
    state.ResumeTiming();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(std::filesystem::file_size(path)));
}

/// What every load is to be compared with: the bytes of the float file copied to fresh memory as they are.
void copyFloatCaf(benchmark::State& state) {
  const auto bytes = static_cast<std::int64_t>(std::filesystem::file_size(twentyMinutes()));
  for ([[maybe_unused]] auto _ : state) {
    const FileHandle file = FileHandle::openForReading(twentyMinutes());
    auto buffer = std::make_unique_for_overwrite<char[]>(static_cast<std::size_t>(bytes));
    benchmark::DoNotOptimize(file.readAt(0, buffer.get(), static_cast<std::size_t>(bytes)));
    state.PauseTiming();
    buffer.reset();
    state.ResumeTiming();
  }
  state.SetBytesProcessed(state.iterations() * bytes);
}
BENCHMARK(copyFloatCaf)->Unit(benchmark::kMillisecond)->Iterations(5);

void loadFloatCaf(benchmark::State& state) {
  load(state, twentyMinutes());
}
BENCHMARK(loadFloatCaf)->Unit(benchmark::kMillisecond)->Iterations(5);

void loadConverted(benchmark::State& state, const std::string& name, const std::string& options) {
  const Converted file(name, options);
  load(state, file.path);
}
BENCHMARK_CAPTURE(loadConverted, wave16, "a.wav", "-c:a pcm_s16le")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);
BENCHMARK_CAPTURE(loadConverted, wave24, "a.wav", "-c:a pcm_s24le")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);
BENCHMARK_CAPTURE(loadConverted, aiff24, "a.aiff", "-c:a pcm_s24be")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);
BENCHMARK_CAPTURE(loadConverted, flac24, "a.flac", "-c:a flac -sample_fmt s32")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2);
BENCHMARK_CAPTURE(loadConverted, appleLossless24, "a.m4a", "-c:a alac")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

/// What an import asks of each file.
void inspectFlac(benchmark::State& state) {
  const Converted file("a.flac", "-c:a flac");
  for ([[maybe_unused]] auto _ : state) {
    AudioFileReader reader(file.path);
    benchmark::DoNotOptimize(reader.length());
  }
}
BENCHMARK(inspectFlac)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zarnet::benchmarks

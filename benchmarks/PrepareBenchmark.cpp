#include "benchmarks/Memory.h"
#include "prepare/AudioPreparer.h"
#include "system/FileSystem.h"
#include "tests/support/Programs.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/Signals.h"

#include <chrono>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <sys/resource.h>

namespace zarnet::benchmarks {
namespace {

/// A moment, or the span between two: seconds by the clock, and of processor time of this process with its
/// finished children.
struct Seconds {
  double clock;
  double processor;

  Seconds operator-(const Seconds& earlier) const {
    return {clock - earlier.clock, processor - earlier.processor};
  }
};

Seconds now() {
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  Seconds moment{std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count(),
                 0};
  for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
    rusage usage{};
    getrusage(who, &usage);
    moment.processor += seconds(usage.ru_utime) + seconds(usage.ru_stime);
  }
  return moment;
}

/// Twenty minutes of music at 44.1 kHz and 24 bits as FLAC: one passage over and over.
const std::filesystem::path& source() {
  static const test::ScratchFolder scratch;
  static const std::filesystem::path path = [] {
    test::writeWave(scratch / "passage.wav", test::music(44100, 2, 20), test::SampleType::int24);
    test::runScript(scratch.path(), "ffmpeg -stream_loop 59 -i passage.wav -t 1200 music.flac");
    return scratch / "music.flac";
  }();
  return path;
}

/// The encoder alone, on the working original of a finished preparation.
Seconds encoderAlone(AudioPreparer& preparer, const PreparedAudio& prepared, const std::string& codec,
                     std::int64_t bitrate) {
  const std::filesystem::path folder = folderOf(prepared.encodedURL);
  const std::string original = (folder / "original.wav").string();
  const std::string encoded = (folder / "alone").string();
  const std::string raw = (folder / "alone.f32").string();
  if (codec == "Ogg Vorbis") prepared.original->writeRaw(raw);
  const Seconds start = now();
  if (codec == "AAC") {
    preparer.run(test::resource("afconvert"), {original, encoded, "-f", "m4af", "-d", "aac", "-b",
                                               std::to_string(bitrate * 1000), "-q", "127", "-s", "0"});
  } else if (codec == "MP3") {
    preparer.run(test::resource("lame"),
                 {"--silent", "--noreplaygain", "--cbr", "-b", std::to_string(bitrate), "--resample", "48",
                  "-q", "2", original, encoded});
  } else {
    preparer.run(test::resource("vorbis-tool"), {"encode", raw, encoded, std::to_string(bitrate)});
  }
  return now() - start;
}

/// The whole of a preparation, then its encoder alone. "of_encoder" is how much longer the whole takes,
/// "of_its_work" the same in processor time, which a busy machine blurs less; "original", "lossy" and "rest"
/// are the seconds between the progress texts; "peak_MB" is the most memory that the process held.
void prepareAgainstItsEncoder(benchmark::State& state, const char* codec, std::int64_t bitrate) {
  source();
  AudioPreparer preparer(test::resource("lame"));
  for ([[maybe_unused]] auto _ : state) {
    resetPeakMemory();
    std::vector<Seconds> moments;
    const PreparedAudio prepared = preparer.prepare(source(), "id", codec, bitrate, true,
                                                    [&](const std::string&) { moments.push_back(now()); });
    moments.push_back(now());
    state.counters["peak_MB"] = peakMemory() / 1e6;
    const Seconds whole = moments[3] - moments[0];
    const Seconds alone = encoderAlone(preparer, prepared, codec, bitrate);
    state.SetIterationTime(whole.clock);
    state.counters["of_encoder"] = whole.clock / alone.clock;
    state.counters["of_its_work"] = whole.processor / alone.processor;
    state.counters["encoder"] = alone.clock;
    state.counters["original"] = (moments[1] - moments[0]).clock;
    state.counters["lossy"] = (moments[2] - moments[1]).clock;
    state.counters["rest"] = (moments[3] - moments[2]).clock;
    preparer.clearTemporaryFiles();
  }
}

void once(benchmark::internal::Benchmark* benchmark) {
  benchmark->UseManualTime()->Iterations(1)->Unit(benchmark::kSecond);
}
BENCHMARK_CAPTURE(prepareAgainstItsEncoder, MP3_320, "MP3", 320)->Apply(once);
BENCHMARK_CAPTURE(prepareAgainstItsEncoder, AAC_256, "AAC", 256)->Apply(once);
BENCHMARK_CAPTURE(prepareAgainstItsEncoder, Ogg_Vorbis_128, "Ogg Vorbis", 128)->Apply(once);

}  // namespace
}  // namespace zarnet::benchmarks

// What the reader makes of whole files as real encoders write them.

#include "media/AudioFileReader.h"
#include "system/PlatformError.h"
#include "tests/support/Programs.h"
#include "tests/support/Signals.h"

#include <cmath>

namespace zarnet::test {

namespace {

/// Noise in whole steps of a depth, which every depth from there on stores exactly.
Signal steps(int bits) {
  Signal signal = noise(48000, 2, 50'021, 0.999, static_cast<std::uint32_t>(bits));
  for (auto& plane : signal.planes) {
    for (float& sample : plane)
      sample = std::ldexp(std::floor(std::ldexp(sample, bits - 1)), 1 - bits);
  }
  return signal;
}

}  // namespace

TEST(AudioFormats, EveryLosslessSampleArrivesExactlyAndLossyFilesNameTheirFormat) {
  constexpr std::uint32_t pcm = fourCharacterCode("lpcm");
  constexpr std::uint32_t flac = fourCharacterCode("flac");
  constexpr std::uint32_t alac = fourCharacterCode("alac");
  const struct {
    std::string name;
    std::string options;
    std::uint32_t formatID;
    int bits;  ///< 0 for lossy ones
  } cases[] = {
      {"u8.wav", "pcm_u8", pcm, 8},
      {"sowt.aiff", "pcm_s16le", pcm, 16},
      {"flac.oga", "flac -sample_fmt s16", flac, 16},
      {"16.m4a", "alac -sample_fmt s16p", alac, 16},
      {"rf64.wav", "pcm_s24le -rf64 always", pcm, 24},
      {"24.aiff", "pcm_s24be", pcm, 24},
      {"24.caf", "pcm_s24le", pcm, 24},
      {"24.flac", "flac -sample_fmt s32 -bits_per_raw_sample 24", flac, 24},
      {"alac24.caf", "alac", alac, 24},
      {"32.wav", "pcm_s32le", pcm, 32},
      {"float.aiff", "pcm_f32be", pcm, 32},
      {"double.caf", "pcm_f64le", pcm, 64},
      {"a.mp3", "libmp3lame", fourCharacterCode(".mp3"), 0},
      {"a.m4a", "aac", fourCharacterCode("aac "), 0},
      {"a.ogg", "libvorbis", fourCharacterCode("vorb"), 0},
      {"a.opus", "libopus", fourCharacterCode("opus"), 0},
      {"adpcm.wav", "adpcm_ms", fourCharacterCode("????"), 0},
  };
  const ScratchFolder scratch;
  for (const auto& [name, options, formatID, bits] : cases) {
    SCOPED_TRACE(name);
    const Signal source = steps(bits == 0 ? 16 : std::min(bits, 24));
    writeWave(scratch / "source.wav", source, SampleType::int24);
    runScript(scratch.path(), "ffmpeg -i source.wav -c:a " + options + " " + name);
    AudioFileReader reader(scratch / name);
    EXPECT_EQ(reader.fileFormat().formatID, formatID);
    EXPECT_EQ(reader.fileFormat().bitsPerChannel, static_cast<std::uint32_t>(bits));
    EXPECT_EQ(reader.fileFormat().sampleRate, 48000);
    if (bits == 0) {
      EXPECT_NEAR(static_cast<double>(reader.length()), static_cast<double>(source.count()), 2'100);
    } else {
      EXPECT_EQ(readSignal(scratch / name).planes, source.planes);
    }
  }
}

TEST(AudioFormats, TheLengthOfALosslessFileIsKnownWithoutReadingAllOfIt) {
  const ScratchFolder scratch;
  constexpr std::int64_t count = 480'021;
  writeWave(scratch / "in.wav", noise(48000, 2, count, 0.5, 7), SampleType::int16);
  runScript(scratch.path(), R"(
    ffmpeg -i in.wav -c:a alac a.caf -c:a alac a.m4a -c:a flac -strict -2 flac.mp4 -c:a flac a.mka \
      -c:a flac flac.caf -c:a flac a.oga
    flac -s in.wav)");
  for (const char* name : {"a.caf", "a.m4a", "flac.mp4", "a.mka", "flac.caf", "a.oga", "in.flac"}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(readSignal(scratch / name).count(), count);
    std::string damaged = readFile(scratch / name);
    damaged.replace(damaged.size() / 4, 1000, 1000, '\xFF');
    writeFile(scratch / name, damaged);
    EXPECT_EQ(AudioFileReader(scratch / name).length(), count);
    EXPECT_THROW(readSignal(scratch / name), PlatformError);
  }
}

TEST(AudioFormats, DelayAndPaddingThatAFileStatesAreTrimmed) {
  const ScratchFolder scratch;
  const Signal source = music(48000, 2, 1.5);
  writeWave(scratch / "in.wav", source);
  runScript(scratch.path(), "ffmpeg -i in.wav -b:a 256k a.mp3 -b:a 256k a.m4a\n" + resource("lame").string() +
                                " --quiet -b 256 in.wav lame.mp3");
  for (const char* name : {"a.mp3", "lame.mp3", "a.m4a"}) {
    const Signal decoded = readSignal(scratch / name);
    ASSERT_EQ(decoded.count(), source.count()) << name;
    EXPECT_EQ(lag(source.planes[0], decoded.planes[0]), 0) << name;
  }
}

TEST(AudioFormats, TheFirstAudioStreamIsRead) {
  const ScratchFolder scratch;
  const Signal source = steps(16);
  writeWave(scratch / "first.wav", source, SampleType::int16);
  runScript(scratch.path(), R"(
    ffmpeg -f lavfi -i testsrc=s=64x64:d=0.3 video.mp4 -frames:v 1 cover.png
    ffmpeg -f lavfi -i sine -t 0.3 second.wav
    ffmpeg -i video.mp4 -i first.wav -i second.wav -map 0 -map 1 -map 2 -c:a alac several.mov
    ffmpeg -i cover.png -i first.wav -map 0 -map 1 -c:v copy -disposition:v attached_pic cover.flac)");
  for (const char* name : {"several.mov", "cover.flac"})
    EXPECT_EQ(readSignal(scratch / name).planes, source.planes) << name;
}

}  // namespace zarnet::test

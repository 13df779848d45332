#include "audio/Alignment.h"
#include "audio/AppError.h"
#include "audio/RawSamples.h"
#include "prepare/AudioPreparer.h"
#include "prepare/CheckRecord.h"
#include "prepare/Codecs.h"
#include "prepare/Gains.h"
#include "prepare/Resources.h"
#include "system/DisplayText.h"
#include "system/FileSystem.h"
#include "system/PlatformError.h"

#include <exception>

namespace zarnet {

namespace {

void removeIgnoringErrors(const std::filesystem::path& path) {
  try {
    removeAll(path);
  } catch (const std::exception&) {  // a leftover goes with its folder at the latest
  }
}

/// Removes a file or folder at the end of its scope, unless it is kept.
class Transient {
 public:
  explicit Transient(const std::filesystem::path& location) : path(location) {}
  ~Transient() {
    if (!kept) removeIgnoringErrors(path);
  }
  Transient(const Transient&) = delete;
  Transient& operator=(const Transient&) = delete;

  void keep() { kept = true; }

 private:
  const std::filesystem::path& path;
  bool kept = false;
};

/// One conversion folder and the programs that fill it.
class Conversion {
 public:
  Conversion(AudioPreparer& owner, const std::string& id, const std::string& codecName, std::int64_t kbps)
      : folder(owner.directory / id),
        original(folder / "original.wav"),
        stem(codecName + "-" + std::to_string(kbps)),
        encoded(folder / (stem + "." + std::string(encodedExtension(codecName)))),
        decoded(folder / (stem + ".caf")),
        record(folder / (stem + "-check.json")),
        preparer(owner),
        codec(codecName),
        bitrate(kbps) {}

  /// Brings the source into the working format at `original`.
  void convert(const std::filesystem::path& source) const {
    const std::filesystem::path working = folder / "original-working.wav";
    removeIgnoringErrors(working);
    preparer.run(converter(), {source, working, "-f", "WAVE", "-d", "LEF32@48000", "-c", "2", "-r", "127"});
    moveFile(working, original);
  }

  /// Makes `encoded` from `original`, whose samples are `signal`.
  void encode(const PCM& signal) const {
    removeIgnoringErrors(encoded);
    if (codec == "AAC") {
      preparer.run(converter(), {original, encoded, "-f", "m4af", "-d", "aac", "-b",
                                 std::to_string(bitrate * 1000), "-q", "127", "-s", "0"});
    } else if (codec == "MP3") {
      preparer.run(preparer.lame, {"--silent", "--noreplaygain", "--cbr", "-b", std::to_string(bitrate),
                                   "--resample", isLowRate() ? "16" : "48", "-q", "2", original, encoded});
    } else {
      const std::filesystem::path raw = folder / "encode-working.f32";
      const Transient removal(raw);
      signal.writeRaw(raw);
      preparer.run(sibling("vorbis-tool"), {"encode", raw, encoded, std::to_string(bitrate)});
    }
  }

  /// Makes `decoded` from `encoded`.
  void decode() const {
    const std::filesystem::path working = folder / "decoded-working.caf";
    removeIgnoringErrors(working);
    if (codec == "Ogg Vorbis") {
      const std::filesystem::path raw = folder / "decode-working.f32";
      const Transient removal(raw);
      preparer.run(sibling("vorbis-tool"), {"decode", encoded, raw});
      rawPCMToCAF(raw, working);
    } else if (isLowRate()) {
      const std::filesystem::path wave = folder / "decode-working.wav";
      const Transient removal(wave);
      preparer.run(preparer.lame, {"--silent", "--decode", encoded, wave});
      convertToCAF(wave, working);
    } else {
      convertToCAF(encoded, working);
    }
    moveFile(working, decoded);
  }

  const std::filesystem::path folder;
  const std::filesystem::path original;  ///< complete whenever it is there
  const std::string stem;
  const std::filesystem::path encoded;
  const std::filesystem::path decoded;  ///< complete whenever it is there
  const std::filesystem::path record;

 private:
  void convertToCAF(const std::filesystem::path& from, const std::filesystem::path& to) const {
    preparer.run(converter(), {from, to, "-f", "caff", "-d", "LEF32@48000", "-c", "2"});
  }

  /// MP3 below 32 kbps exists only at half the sample rates, and decodes best with its own encoder.
  bool isLowRate() const { return codec == "MP3" && bitrate < 32; }

  std::filesystem::path sibling(const char* name) const { return folderOf(preparer.lame) / name; }

  std::filesystem::path converter() const { return converterProgram(folderOf(preparer.lame)); }

  AudioPreparer& preparer;
  const std::string codec;
  const std::int64_t bitrate;
};

/// Creates the folder of a conversion. An identifier that names anything but an entry of the workspace would
/// let a failed preparation remove what is not its own.
void createConversionFolder(HeldFolder& workspace, const std::string& id) {
  if (id.empty() || id == "." || id == ".." || id.find('/') != std::string::npos ||
      id.find('\0') != std::string::npos)
    throw PlatformError("A conversion folder cannot be named “" + displayText(id) + "”.");
  workspace.renew();
  createFolders(workspace.path() / id);
}

}  // namespace

PreparedAudio AudioPreparer::prepare(const std::filesystem::path& url, const std::string& id,
                                     const std::string& codec, std::int64_t bitrate, bool match,
                                     const Progress& progress) {
  const AudioInfo info = inspectAudio(url);
  if (!isAccepted(codec, bitrate)) throw AppError("Choose a supported format and bitrate.");
  const Conversion conversion(*this, id, codec, bitrate);
  createConversionFolder(workspace, id);
  Transient folder(conversion.folder);

  progress("Preparing audio…");
  if (!fileExists(conversion.original)) conversion.convert(absolutePath(url));
  const auto original = std::make_shared<const PCM>(conversion.original);

  progress("Creating the comparison…");
  if (!fileExists(conversion.decoded)) {
    conversion.encode(*original);
    conversion.decode();
  }
  checkCancellation();
  const auto lossy = std::make_shared<const PCM>(conversion.decoded);

  progress(match ? "Aligning playback and matching loudness…" : "Aligning playback…");
  const Alignment found = alignment(*original, *lossy);
  std::pair<double, double> loudness = {0.0, 0.0};
  if (match) loudness.first = original->loudness();
  checkCancellation();
  if (match) loudness.second = lossy->loudness();

  const std::pair<float, float> peaks = {original->peak(), lossy->peak()};
  PreparedAudio prepared = {conversion.encoded,
                            original,
                            lossy,
                            info,
                            found.offset,
                            found.correlation,
                            playbackGains(loudness, peaks),
                            loudness};
  try {
    writeCheckRecord(conversion.record, checkRecordText(prepared, codec, bitrate, match, peaks));
  } catch (const std::exception&) {  // a diagnosis that cannot be written spoils no comparison
  }
  checkCancellation();
  folder.keep();
  return prepared;
}

}  // namespace zarnet

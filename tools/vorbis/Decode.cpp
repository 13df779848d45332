#include "tools/vorbis/Decode.h"

#include "system/DisplayText.h"
#include "system/FileHandle.h"
#include "system/Interleaving.h"
#include "tools/vorbis/Format.h"
#include "tools/vorbis/OutputFile.h"
#include "tools/vorbis/Owned.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <exception>
#include <functional>
#include <future>
#include <stdexcept>
#include <string>

#include <unistd.h>
#define OV_EXCLUDE_STATIC_CALLBACKS
#include <vorbis/vorbisfile.h>

namespace zarnet {

namespace {

/// What the decoding library reads from. It passes back no more than "failed", so the reason is kept here.
struct Source {
  FileHandle file;
  std::exception_ptr failure;
};

std::size_t readSource(void* target, std::size_t size, std::size_t count, void* source) {
  auto& [file, failure] = *static_cast<Source*>(source);
  try {
    return file.read(target, size * count) / size;
  } catch (...) {
    failure = std::current_exception();
    errno = EIO;
    return 0;
  }
}

int seekSource(void* source, ogg_int64_t offset, int whence) {
  return lseek(static_cast<Source*>(source)->file.descriptor(), offset, whence) < 0 ? -1 : 0;
}

long tellSource(void* source) {
  return lseek(static_cast<Source*>(source)->file.descriptor(), 0, SEEK_CUR);
}

class Decoder {
 public:
  explicit Decoder(const std::filesystem::path& path)
      : name(quotedName(path)), source{FileHandle::openForReading(path), nullptr} {
    const ov_callbacks callbacks = {readSource, seekSource, nullptr, tellSource};
    const int result = ov_open_callbacks(&source, file.get(), nullptr, 0, callbacks);
    if (source.failure) std::rethrow_exception(source.failure);
    if (result != 0) throw std::runtime_error(name + " is not an Ogg Vorbis file.");
    for (long link = 0; link < ov_streams(file.get()); ++link) {
      const vorbis_info* info = ov_info(file.get(), static_cast<int>(link));
      if (info == nullptr || info->channels != channels || info->rate != sampleRate)
        throw std::runtime_error(name + " is not 48 kHz stereo.");
    }
  }

  /// Length of all links together, in frames.
  std::int64_t length() {
    const std::int64_t frames = ov_pcm_total(file.get(), -1);
    require(frames >= 0);
    return frames;
  }

  /// Makes `read` go on with this frame.
  void seek(std::int64_t frame) { require(ov_pcm_seek(file.get(), frame) == 0); }

  /// Points `planes` to the next frames, `most` at most, and returns how many there are, 0 at the end.
  int read(float**& planes, int most) {
    int link = 0;
    const long frames = ov_read_float(file.get(), &planes, most, &link);
    require(frames >= 0);
    return static_cast<int>(frames);
  }

  /// Raises unless `read` has come to this frame by the file's granule positions.
  void requirePosition(std::int64_t frame) { require(ov_pcm_tell(file.get()) == frame); }

  /// Raises unless `read` has come to the end.
  void requireEnd() {
    float** planes = nullptr;
    // The last page of a stream says that it is the last: where it does not, the file was cut.
    require(read(planes, chunkFrames) == 0 && file->os.e_o_s != 0);
  }

 private:
  void require(bool intact) {
    if (source.failure) std::rethrow_exception(source.failure);
    if (!intact) throw std::runtime_error(name + " is damaged or incomplete.");
  }

  std::string name;
  Source source;
  Owned<OggVorbis_File, ov_clear> file;
};

/// Decodes the frames from `first` up to `last`.
void decodePart(const std::filesystem::path& input, OutputFile& output, std::int64_t first,
                std::int64_t last) {
  Decoder decoder(input);
  if (first > 0) decoder.seek(first);
  OutputPart part(output, first * frameBytes);
  std::array<float, std::size_t{chunkFrames} * channels> frames;
  float** planes = nullptr;
  std::int64_t position = first;
  while (position < last) {
    const auto wanted = std::min<std::int64_t>(last - position, chunkFrames);
    const int count = decoder.read(planes, static_cast<int>(wanted));
    if (count == 0) break;
    interleave(planes[0], planes[1], count, frames.data());
    part.append(frames.data(), static_cast<std::size_t>(count * frameBytes));
    position += count;
  }
  part.finish();
  decoder.requirePosition(last);
  if (last == decoder.length()) decoder.requireEnd();
}

}  // namespace

void decode(const std::filesystem::path& input, const std::filesystem::path& output) {
  const std::int64_t length = Decoder(input).length();
  const std::int64_t middle = length / 2;
  OutputFile target(output);
  // Two cores halve the time: every frame decodes alike wherever decoding began.
  auto secondHalf =
      std::async(std::launch::async, decodePart, std::cref(input), std::ref(target), middle, length);
  decodePart(input, target, 0, middle);
  secondHalf.get();
  target.finish();
}

}  // namespace zarnet

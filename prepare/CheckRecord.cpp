#include "prepare/CheckRecord.h"

#include "system/FileHandle.h"
#include "system/FileSystem.h"
#include "system/PlatformError.h"

#include <algorithm>
#include <cmath>

#include <nlohmann/json.hpp>

namespace zarnet {

std::string checkRecordText(const PreparedAudio& prepared, const std::string& codec, std::int64_t bitrate,
                            bool matched, std::pair<float, float> peaks) {
  // nlohmann::json keeps an object's keys sorted and prints numbers alike in every locale.
  const nlohmann::json record = {
      {"bitrate", bitrate},
      {"codec", codec},
      {"correlation", prepared.correlation},
      {"decodedFrames", prepared.lossy->count},
      {"gainLossy", prepared.gains.second},
      {"gainOriginal", prepared.gains.first},
      {"loudnessLossy", prepared.loudness.second},
      {"loudnessOriginal", prepared.loudness.first},
      {"matched", matched},
      {"offsetSamples", prepared.offset},
      {"originalFrames", prepared.original->count},
      {"peakLossy", peaks.second},
      {"peakOriginal", peaks.first},
  };
  const bool finite = std::ranges::all_of(record, [](const nlohmann::json& value) {
    return !value.is_number_float() || std::isfinite(value.get<double>());
  });
  return finite ? record.dump(2) + "\n" : "";
}

void writeCheckRecord(const std::filesystem::path& path, const std::string& text) {
  if (text.empty()) return;
  FileHandle file = FileHandle::createForWriting(path);
  try {
    file.write(text.data(), text.size());
    file.close();
  } catch (const PlatformError&) {
    removeAll(path);
    throw;
  }
}

}  // namespace zarnet

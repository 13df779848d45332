#pragma once

#include "media/MediaTags.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zarnet {

// Values on their way from a file into `MediaTags`.

/// As much of a stored text as can count: every encoding has at most four bytes for a character.
constexpr std::int64_t longestText = 4 * 4096;

/// What texts that are not UTF-8 mostly are, as ICU names it.
constexpr const char* windowsText = "windows-1252";

/// The text that `bytes` hold in the encoding that ICU knows by that name, as valid UTF-8.
std::string decoded(std::string_view bytes, const char* encoding);

/// Appends a text of valid UTF-8, unless it is empty.
void appendText(std::vector<std::string>& texts, std::string_view text);

/// Appends the text that `bytes` hold before the first NUL: UTF-8 when they are valid UTF-8, else in the
/// encoding that ICU knows by the name `otherwise`.
void appendText(std::vector<std::string>& texts, std::string_view bytes, const char* otherwise);

/// Where a file holds an encoded picture.
struct StoredPicture {
  enum class Form {
    plain,
    escaped,      ///< with a zero behind each 0xFF
    base64Block,  ///< the body of a FLAC picture block as base64
    base64,
  };

  std::int64_t offset = 0;
  std::int64_t size = 0;  ///< bytes in the file
  Form form = Form::plain;
};

/// What the readers of the several kinds of tags fill.
struct FoundTags {
  MediaTags texts;
  std::vector<StoredPicture> pictures;
};

}  // namespace zarnet

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <taglib/tbytevector.h>

namespace zarnet {

// Values on their way from a file into `MediaTags`: what is over its limits is left out.

constexpr std::size_t longestText = std::size_t{1} << 20;
constexpr std::size_t largestPicture = std::size_t{64} << 20;

/// What texts that are not UTF-8 mostly are.
constexpr const char* windowsText = "windows-1252";

/// Appends a text of valid UTF-8.
void appendText(std::vector<std::string>& texts, std::string text);

/// Appends the text that `bytes` hold before the first NUL: UTF-8 when they are valid UTF-8, else in the
/// encoding that ICU knows by the name `otherwise`.
void appendText(std::vector<std::string>& texts, const TagLib::ByteVector& bytes, const char* otherwise);

/// Appends a text in UTF-16 of the big-endian kind.
void appendUTF16(std::vector<std::string>& texts, const TagLib::ByteVector& bytes);

/// Appends an encoded picture.
void appendPicture(std::vector<std::string>& pictures, const TagLib::ByteVector& bytes);

}  // namespace zarnet

#include "system/DisplayText.h"

#include "system/Characters.h"

#include <array>
#include <charconv>
#include <cstddef>

namespace zarnet {

std::string displayText(const std::filesystem::path& path) {
  const std::string& bytes = path.native();
  std::string text;
  for (std::size_t position = 0; position < bytes.size();) {
    bool cutShort = false;
    const std::size_t length = characterLength(bytes, position, cutShort);
    if (length == 0) {
      text += "\uFFFD";
      ++position;
    } else {
      text.append(bytes, position, length);
      position += length;
    }
  }
  return text;
}

std::string quotedName(const std::filesystem::path& path) {
  const std::filesystem::path named = path.has_filename() ? path : path.parent_path();
  return "“" + displayText(named.has_filename() ? named.filename() : named) + "”";
}

std::string formatG(double value) {
  std::array<char, 32> text;
  const auto end =
      std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 6);
  return {text.data(), end.ptr};
}

}  // namespace zarnet

// vorbis-tool: encodes raw sample files as Ogg Vorbis and decodes them again.

#include "tools/support/Tool.h"
#include "tools/vorbis/Decode.h"
#include "tools/vorbis/Encode.h"

#include <charconv>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <vector>

namespace {

constexpr const char* usage =
    "usage: vorbis-tool encode IN.f32 OUT.ogg KBPS | vorbis-tool decode IN.ogg OUT.f32";

int parsedBitrate(std::string_view text) {
  unsigned kbps = 0;  // unsigned, so that no sign is taken
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), kbps);
  if (error != std::errc{} || end != text.data() + text.size() || kbps == 0 || kbps > 1000)
    throw std::runtime_error("The bitrate is not a whole number from 1 to 1000 kbps.");
  return static_cast<int>(kbps);
}

void run(const std::vector<std::string_view>& arguments) {
  const bool encoding = arguments.size() == 4 && arguments[0] == "encode";
  const bool decoding = arguments.size() == 3 && arguments[0] == "decode";
  if (!encoding && !decoding) throw std::runtime_error(usage);
  const std::filesystem::path input = arguments[1];
  const std::filesystem::path output = arguments[2];
  zarnet::requireTwoFiles(input, output);
  if (encoding) {
    zarnet::encode(input, output, parsedBitrate(arguments[3]));
  } else {
    zarnet::decode(input, output);
  }
}

}  // namespace

int main(int count, char** values) {
  return zarnet::runConverter([&] { run({values + 1, values + count}); });
}

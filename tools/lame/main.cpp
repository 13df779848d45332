// lame: stands before the system's program of that name and keeps it from changing the level.
//
// Debian builds lame with libsndfile, and has it stretch the floating-point samples of a named file until the
// loudest reaches full scale: a quiet recording comes back 20 dB louder. What arrives on standard input goes
// through lame's own reader, which takes the samples as they are. So the input of an encoding is handed over
// there; decoding passes unchanged. The command line is `lame OPTIONS… INPUT OUTPUT`.

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

namespace {

int failure(const char* name) {
  std::fprintf(stderr, "%s: %s\n", name, std::strerror(errno));
  return 1;
}

bool isDecoding(int count, char** values) {
  for (int i = 1; i < count; ++i) {
    if (std::string_view(values[i]) == "--decode") return true;
  }
  return false;
}

}  // namespace

int main(int count, char** values) {
  char standardInput[] = "-";
  if (count >= 3 && !isDecoding(count, values)) {
    char*& input = values[count - 2];
    const int file = open(input, O_RDONLY);
    if (file < 0 || dup2(file, STDIN_FILENO) < 0) return failure(input);
    input = standardInput;
  }
  execv(ZARNET_LAME, values);
  return failure(ZARNET_LAME);
}

// lame: stands before the system's program of that name, keeps it from changing the level, and tells why a
// file could not be written.
//
// Debian builds lame with libsndfile, and has it stretch the floating-point samples of a named file until the
// loudest reaches full scale: a quiet recording comes back 20 dB louder. What arrives on standard input goes
// through lame's own reader, which takes the samples as they are. So the input of an encoding is handed over
// there. What lame writes goes to memory (an hour at 320 kbps is 144 MB), where it can go back and complete
// its header as in a file; from there it is written by this program, which unlike lame names the file and the
// reason when it cannot. The command line is `lame OPTIONS… INPUT OUTPUT`; any other is lame's own affair.

#include "system/ChildProcess.h"
#include "system/Descriptor.h"
#include "system/FileHandle.h"
#include "tools/support/Tool.h"

#include <cerrno>
#include <string>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

namespace zarnet {

namespace {

constexpr std::size_t copiedBytes = std::size_t{1} << 20;  // at a time

void runLame(const std::vector<std::string>& arguments, const std::filesystem::path& output) {
  // Its messages come out where ours do.
  ChildProcess lame(ZARNET_LAME, arguments, STDERR_FILENO);
  const int status = lame.reap();
  if (status == 128 + SIGXFSZ) throw systemError(output, "could not be written", EFBIG);
  if (status != 0) throw PlatformError("“lame” ended with status " + std::to_string(status) + ".");
}

void convert(std::vector<std::string> arguments) {
  const std::filesystem::path input = arguments[arguments.size() - 2];
  const std::filesystem::path output = arguments.back();
  requireTwoFiles(input, output);
  const FileHandle source = FileHandle::openForReading(input);
  if (std::ranges::count(arguments, "--decode") == 0) {
    if (dup2(source.descriptor(), STDIN_FILENO) < 0) throw systemError(input, "could not be opened", errno);
    arguments[arguments.size() - 2] = "-";
  }
  FileHandle target = FileHandle::createForWriting(output);
  const Descriptor memory(memfd_create("lame", MFD_CLOEXEC));
  if (memory.get() < 0) throw systemError(output, "could not be written", errno);
  const std::string written = "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(memory.get());
  arguments.back() = written;
  try {
    runLame(arguments, output);
    FileHandle result = FileHandle::openForReading(written);
    std::vector<char> buffer(copiedBytes);
    while (const std::size_t bytes = result.read(buffer.data(), buffer.size()))
      target.write(buffer.data(), bytes);
    target.close();
  } catch (const std::exception&) {
    removeUnfinished(output);
    throw;
  }
}

bool isOperand(const std::string& argument) {
  return !argument.empty() && argument[0] != '-';
}

}  // namespace

}  // namespace zarnet

int main(int count, char** values) {
  return zarnet::runConverter([&] {
    const std::vector<std::string> arguments(values + 1, values + count);
    if (count >= 3 && zarnet::isOperand(arguments.back()) && zarnet::isOperand(arguments.end()[-2]))
      return zarnet::convert(arguments);
    execv(ZARNET_LAME, values);
    throw zarnet::systemError(ZARNET_LAME, "could not be started", errno);
  });
}

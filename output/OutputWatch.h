#pragma once

#include <cstdint>
#include <string>

namespace zarnet {

/// One thing that the audio server tells about its outputs.
struct OutputReport {
  enum class Kind {
    defaultOutput,  ///< `name` is the default output; empty or "@DEFAULT_SINK@" while that is undecided
    opened,         ///< our stream stands on the output `name`, number `output`
    activePort,     ///< `name` is the active port of the output `output`; empty where it has none
    removed,        ///< the output `output` has gone
    moved,          ///< our stream stands on another output
    suspended,      ///< our output sleeps: nothing is heard
    awake,          ///< our output plays what it gets
    ended,          ///< the stream or the connection has ended
  };
  Kind kind;
  std::string name = {};
  std::uint32_t output = 0;
};

/// Decides which report ends a session: nothing may be heard but on the output, and through the port, that
/// the session has begun with. Not synchronised.
class OutputWatch {
 public:
  /// Whether this report means that the output is lost. Takes note of what later ones are compared with:
  ///
  /// - Another default output counts once the stream has stood on the default one. A stream that was sent
  ///   elsewhere, as the server remembers it for the program, stays there.
  /// - Another active port of our output counts (the headphones were pulled), its first one does not.
  /// - Sleep counts once the output has been awake: one that sleeps when it is opened may wake up.
  /// - What happens to other outputs never counts.
  bool isLost(const OutputReport& report);

  /// The output is known to be awake.
  bool isAwake() const { return awake; }

 private:
  std::string defaultOutput;  // empty while undecided
  bool isOpen = false;
  std::uint32_t number = 0;
  std::string name;
  bool followsDefault = false;
  bool portKnown = false;
  std::string port;
  bool awake = false;
};

}  // namespace zarnet

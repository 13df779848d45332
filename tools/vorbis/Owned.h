#pragma once

namespace zarnet {

/// One of the structs of the Ogg and Vorbis libraries, cleared at the end of its scope. It starts as zeros,
/// which each of their clear functions accepts; the libraries' own set-up function follows.
template <typename Struct, auto clear>
class Owned {
 public:
  Owned() = default;
  ~Owned() { clear(&value); }
  Owned(const Owned&) = delete;
  Owned& operator=(const Owned&) = delete;

  Struct* get() { return &value; }
  Struct* operator->() { return &value; }

 private:
  Struct value{};
};

}  // namespace zarnet

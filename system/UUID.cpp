#include "system/UUID.h"

#include <array>

#include <uuid/uuid.h>

namespace zarnet {

std::string newUUID() {
  uuid_t identity;
  uuid_generate_random(identity);
  std::array<char, UUID_STR_LEN> text;
  uuid_unparse_upper(identity, text.data());
  return text.data();
}

}  // namespace zarnet

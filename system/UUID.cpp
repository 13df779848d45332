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

bool isUUID(std::string_view text) {
  uuid_t identity;
  if (text.size() != UUID_STR_LEN - 1 || uuid_parse(std::string(text).c_str(), identity) != 0) return false;
  std::array<char, UUID_STR_LEN> canonical;
  uuid_unparse_upper(identity, canonical.data());
  return text == canonical.data();
}

}  // namespace zarnet

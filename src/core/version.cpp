#include "core/version.h"

namespace norvik {

std::string_view Program_Version() {
  return NORVIK_VERSION;
}

}  // namespace norvik

#include "core/version.h"

namespace norvik {

const std::string_view Program_Version = NORVIK_VERSION;

}  // namespace norvik

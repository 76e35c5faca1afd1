#include "import/gerber/table.h"

namespace norvik {

Gerber_Table_State Gerber_Table;

}  // namespace norvik

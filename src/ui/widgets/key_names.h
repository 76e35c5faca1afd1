// key_names.h: what stands on the key of a virtual key code.
#pragma once

#include <QString>

namespace norvik {

// "Num 4", "Page up", "key 223" for one without a name, "no key" for codes below 1.
QString Key_Name(int code);

}  // namespace norvik

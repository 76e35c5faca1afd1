#include "drive/drive.h"

#include "drive/drive_host.h"
#include "drive/drive_status.h"

namespace norvik {

namespace {

constexpr Drive_Operations No_Drive{};

}  // namespace

Drive_Status_State Drive_Status;
Drive_Host_Operations Drive_Host;
Drive_Choice_Operations Drive_Choice{[]() -> const Drive_Operations& { return No_Drive; }};

}  // namespace norvik

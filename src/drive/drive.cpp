#include "drive/drive.h"

#include "drive/drive_host.h"
#include "drive/drive_status.h"

namespace norvik {

Drive_Status_State Drive_Status;
Drive_Host_Operations Drive_Host;
Drive_Choice_Operations Drive_Choice;

const Drive_Operations& Without_Drive() {
  static constexpr Drive_Operations no_drive{};
  return no_drive;
}

}  // namespace norvik

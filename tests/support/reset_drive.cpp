#include "drive/drive.h"
#include "drive/drive_host.h"
#include "drive/drive_status.h"
#include "support/reset.h"

namespace norvik {

void Reset_Drive() {
  Reset_Core();
  Drive_Choice = {};
  Drive_Host = {};
  Drive_Status = {};
}

}  // namespace norvik

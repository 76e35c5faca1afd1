#include "serial/commands.h"
#include "serial/monitor.h"
#include "serial/serial_link.h"
#include "serial/serial_page.h"
#include "serial/serial_session.h"
#include "serial/stream.h"
#include "serial/stream_trace.h"
#include "support/reset.h"

namespace norvik {

void Reset_Serial() {
  Reset_Drive();
  Serial_Link = {};
  Serial_Link_Host = {};
  Serial_Session = {};
  Serial_Session_Host = {};
  Dravon = {};
  Dravon_Stream = {};
  Stream_Limit = {};
  Dravon_Trace = {};
  Serial_Page = {};
}

}  // namespace norvik

#include "import/hpgl/pens.h"

#include "core/paths.h"
#include "core/setup.h"
#include "import/pipeline/numbers.h"

namespace norvik {

namespace {

// As a G-code word takes it.
std::string Feed_Text(const std::string& text, Import_Faults& faults) {
  std::string feed;
  if (Trim(text).empty()) return feed;
  faults.Try([&] { feed = General_Text(Foreign_Number(text)); });
  return feed;
}

}  // namespace

void Take_HPGL_Pen(ImportLine& record, std::int16_t pen, Import_Faults& faults) {
  record.Pen = pen;
  record.Layer = std::to_string(pen);
  const auto& feeds = MachineSetup.HPGL_Multiple_Pen_Cutting_IPM;
  const bool has_row = pen >= feeds.first && pen <= feeds.last;
  record.Cut_Feed = has_row ? Feed_Text(feeds[pen], faults) : "";
  record.Plunge_Feed =
      has_row ? Feed_Text(MachineSetup.HPGL_Multiple_Pen_Plunge_IPM[pen], faults) : "";
  const std::string depth = has_row ? Trim(MachineSetup.HPGL_Multiple_Pen_Plunge_Depth[pen]) : "";
  record.Z1.reset();
  if (!depth.empty()) faults.Try([&] { record.Z1 = Foreign_Number(depth); });
  record.Z2 = record.Z1;
}

}  // namespace norvik

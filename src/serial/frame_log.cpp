#include "serial/frame_log.h"

#include "core/fault.h"
#include "serial/serial_link.h"

#include <cstdio>
#include <memory>

namespace norvik {

namespace {

struct Close_File {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

struct Frame_Log_State {
  std::unique_ptr<std::FILE, Close_File> File;
  bool Failed = false;
};
Frame_Log_State Frame_Log;

void Write_Exchange(std::span<const std::uint8_t> sent, std::span<const std::uint8_t> received) {
  const std::string line = std::to_string(Serial_Link.Exchanges) + " " + Hex_Text(sent) + " / " +
                           (received.empty() ? "-" : Hex_Text(received)) + "\n";
  if (std::fwrite(line.data(), 1, line.size(), Frame_Log.File.get()) != line.size())
    Frame_Log.Failed = true;
}

}  // namespace

void Record_Frames_To_File(const std::string& path) {
  Frame_Log = {};
  Frame_Log.File.reset(std::fopen(path.c_str(), "wb"));
  if (!Frame_Log.File)
    throw Fault(
        Fault_Number::Path_Access,
        "The frame log " + path + " cannot be written. Choose a folder that you may write to.");
  Serial_Link_Host.Exchanged = Write_Exchange;
}

bool Stop_Frame_Recorder() {
  if (!Frame_Log.File) return true;
  Serial_Link_Host.Exchanged = nullptr;
  const bool flushed = std::fflush(Frame_Log.File.get()) == 0;
  Frame_Log.File.reset();
  return flushed && !Frame_Log.Failed;
}

}  // namespace norvik

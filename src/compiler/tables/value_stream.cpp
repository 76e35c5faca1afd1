#include "compiler/tables/value_stream.h"

#include "core/paths.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace norvik {

File_Source::File_Source(const std::string& path) : Path(path) {
  File = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (File < 0) throw File_Fault(path, "Cannot read", errno);
}

File_Source::~File_Source() {
  ::close(File);
}

bool File_Source::Fill(std::string& bytes) {
  constexpr std::size_t portion = 1 << 19;
  const std::size_t before = bytes.size();
  bytes.resize(before + std::max(portion, before));  // doubles for a value that is very long
  ssize_t count = 0;
  do {
    count = ::read(File, bytes.data() + before, bytes.size() - before);
  } while (count < 0 && errno == EINTR);
  if (count < 0) throw File_Fault(Path, "Cannot read", errno);
  bytes.resize(before + static_cast<std::size_t>(count));
  return count > 0;
}

std::uint64_t File_Source::Size() const {
  struct stat about {};
  if (::fstat(File, &about) != 0 || !S_ISREG(about.st_mode)) return 0;
  return static_cast<std::uint64_t>(about.st_size);
}

bool Memory_Source::Fill(std::string& bytes) {
  const bool any = !Rest.empty();
  bytes += Rest;
  Rest = {};
  return any;
}

std::optional<Raw_Value> Value_Stream::Next() {
  for (;;) {
    const char* start = Cutter.Place();
    const std::int64_t lines = Cutter.Lines();
    const bool stands = !At_Line_Start || Cutter.Skip_Line_Ends();
    if (Cutter.Ended() && All) return std::nullopt;
    const std::int64_t value_line = Cutter.Lines();
    Raw_Value value;
    try {
      if (stands && !Cutter.Ended() && Cutter.Cut(value)) {
        At_Line_Start = Cutter.Lines() != value_line;
        return value;
      }
    } catch (const Fault& fault) {
      throw Fault(fault.Number,
                  Name + ", line " + std::to_string(value_line + 1) + ": " + fault.Description);
    }
    Cutter.Return_To(start, lines);
    Get_More();
  }
}

void Value_Stream::Get_More() {
  constexpr std::size_t longest_value = 64 << 20;
  if (const char* place = Cutter.Place()) {
    const auto used = static_cast<std::size_t>(place - Bytes.data());
    Bytes.erase(0, used);
    Dropped += used;
  }
  if (Bytes.size() > longest_value) {
    throw Fault(Fault_Number::Bad_File_Data,
                Name + ", line " + std::to_string(Cutter.Lines() + 1) +
                    ": a value has more than 64 MB; a quote that is not closed?");
  }
  if (!Source.Fill(Bytes)) All = true;
  Cutter.Set(Bytes.data(), Bytes.data() + Bytes.size(), All);
}

void Append_Spelled(std::string& text, const Raw_Value& value) {
  if (value.Quoted) text += '"';
  text += value.Text;
  if (value.Quoted) text += '"';
}

}  // namespace norvik

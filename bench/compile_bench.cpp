// compile_bench: G-code text to planned wire table, and each pass by itself.
//
//   compile_bench INPUTS [FOLDER]     INPUTS holds the generated programs, FOLDER takes the tables
//
// Times are of the processor, kernel included, so that other work on the machine counts little; the
// compile is one thread. For each program, best of several rounds:
//   total       text file to both tables complete on disk
//   floor       the same input and output without a compiler: one left-to-right scan of the text
//               (letters, numbers by std::from_chars), and one buffered write of the same two files
//               (each number by std::to_chars)
//   bytes       the scan, and the write of the same bytes as they stand
//   memory      the most that the process held, a wire
//   silence     the longest stretch between two yields; no yield falls into the wire pass
//   passes      each alone, in memory or to its file, and its share in their sum
// and for the tables the ratio of writer and reader to bare loops over the same fields.
//
// Each program runs in a process of its own, so that the memory is its own.
#include "compiler/compile/compile.h"
#include "compiler/interpreter/line_pass.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/fields.h"
#include "compiler/tables/program_wire.h"
#include "compiler/tables/tables_io.h"
#include "compiler/text/program_text.h"
#include "compiler/wires/feed_pass.h"
#include "compiler/wires/wire_pass.h"
#include "core/application.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/setup.h"
#include "platform/platform.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace norvik;

constexpr int Rounds = 5;
constexpr std::string_view Scratch_Name = "bench_scratch.csv";

double Wall_Seconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// Of this process, kernel included.
double Cpu_Seconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double Timed(const std::function<void()>& body) {
  const double start = Cpu_Seconds();
  body();
  return Cpu_Seconds() - start;
}

double Best(const std::function<void()>& body) {
  double best = Timed(body);
  for (int round = 1; round < Rounds; ++round) best = std::min(best, Timed(body));
  return best;
}

double Peak_Bytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) * 1024;
}

// The longest stretch between two yields.
struct Yield_Clock {
  void Yield() {
    const double now = Cpu_Seconds();
    Longest = std::max(Longest, now - Last);
    Last = now;
  }
  double Last = Cpu_Seconds(), Longest = 0;
};

// --- The compile ---------------------------------------------------------------------------------

struct Paths {
  std::string Program, LineArc_File, Wire_File, Scratch;
};

std::shared_ptr<const GCode_Text> Text_Of(const Paths& paths) {
  return std::make_shared<const GCode_Text>(Read_Whole_File(paths.Program));
}

void Compile(const Paths& paths) {
  Install_Table({});
  GCode_Program.Text = Text_Of(paths);
  if (!CompileProgram()) std::printf("  the compile failed: %s\n", Messages.LastMessage.c_str());
}

// --- The floor -----------------------------------------------------------------------------------

// Letters and numbers of the text, once from left to right.
double Scan(const std::string& text) {
  double sum = 0;
  const char* at = text.data();
  const char* const end = at + text.size();
  while (at != end) {
    if (*at < 'A' || *at > 'Z') {
      ++at;
      continue;
    }
    double number = 0;
    const auto result = std::from_chars(at + 1, end, number);
    at = result.ec == std::errc() ? result.ptr : at + 1;
    sum += number;
  }
  return sum;
}

// The plain way to print a field.
struct Bare_Print {
  char* At;
  template <class Number>
  void Put(Number value) {
    At = std::to_chars(At, At + 400, value).ptr;
  }
  void Word(const char* word) {
    const std::size_t length = std::strlen(word);
    std::memcpy(At, word, length);
    At += length;
  }
  void operator()(std::int16_t value) { Put(value); }
  void operator()(std::int32_t value) { Put(value); }
  void operator()(float value) { Put(value); }
  void operator()(Nullable value) { value ? Put(*value) : Word("#NULL#"); }
  void operator()(bool value) { Word(value ? "#TRUE#" : "#FALSE#"); }
  void operator()(Record_Type value) { Put(static_cast<int>(value)); }
  void operator()(std::optional<std::int16_t> value) { value ? Put(*value) : Word("#NULL#"); }
  void operator()(std::string_view text) {
    *At++ = '"';
    std::memcpy(At, text.data(), text.size());
    At += text.size();
    *At++ = '"';
  }
};

template <class Record>
void Bare_Write(const std::string& path, const Record_List<Record>& rows) {
  constexpr std::size_t flush_size = 1 << 18;
  std::string bytes(2 * flush_size, '\0');
  const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
  Bare_Print print{bytes.data()};
  const auto flush = [&] {
    const auto length = static_cast<std::size_t>(print.At - bytes.data());
    if (::write(file, bytes.data(), length) != static_cast<ssize_t>(length)) std::perror("write");
    print.At = bytes.data();
  };
  for (const Record& row : rows) {
    For_Each_Field<Record>([&](const auto& field) {
      print(field.Of(row));
      *print.At++ = ',';
    });
    *print.At++ = '\n';
    if (static_cast<std::size_t>(print.At - bytes.data()) > flush_size) flush();
  }
  flush();
  ::close(file);
}

void Write_Bytes(const std::string& path, std::string_view bytes) {
  const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
  while (!bytes.empty()) {
    const ssize_t count = ::write(file, bytes.data(), std::min<std::size_t>(bytes.size(), 1 << 18));
    if (count <= 0) break;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  ::close(file);
}

// The plain way to read the fields of a file; no table comes of it.
double Bare_Read(const std::string& path) {
  const std::string bytes = Read_Whole_File(path);
  const char* at = bytes.data();
  const char* const end = at + bytes.size();
  double sum = 0;
  while (at < end) {
    if (*at == '"' || *at == '#') {
      const auto* other = static_cast<const char*>(
          std::memchr(at + 1, *at, static_cast<std::size_t>(end - at - 1)));
      at = other == nullptr ? end : other + 1;
    } else {
      double number = 0;
      at = std::from_chars(at, end, number).ptr;
      sum += number;
    }
    at += at < end && *at == '\r' ? 2 : 1;
  }
  return sum;
}

volatile double Sink;

// --- Reports -------------------------------------------------------------------------------------

void Report_Tables(const Paths& paths, const Table<Wire>& wires) {
  const double write = Best([&] { Write_Wire_Table(paths.Scratch, wires); });
  const double bare_write = Best([&] { Bare_Write(paths.Scratch, wires.Rows); });
  const double read = Best([&] { Sink = Read_Wire_Table(paths.Wire_File).Rows[0].IPM_D; });
  const double bare_read = Best([&] { Sink = Bare_Read(paths.Wire_File); });
  std::printf(
      "  wire table: writer %.3f s, %.2f of a bare loop; reader %.3f s, %.2f of a bare loop\n",
      write, write / bare_write, read, read / bare_read);
}

void Report_Feed(Table<Wire>& wires) {
  const double time = Best([&] {
    for (Wire& wire : wires.Rows) wire.IPM_S = wire.IPM_R = wire.IPM_E = wire.IPM_D;
    Plan_Rates(wires.Rows);
  });
  const double reset = Best([&] {
    for (Wire& wire : wires.Rows) wire.IPM_S = wire.IPM_R = wire.IPM_E = wire.IPM_D;
  });
  std::printf("  feed pass in memory: %.0f ns a wire\n",
              (time - reset) / static_cast<double>(wires.Rows.size()) * 1e9);
}

void Report_Total(const Paths& paths) {
  // The first round is for memory and yields, whose clock costs time of its own.
  Yield_Clock yields;
  Platform.Do_Events = [&] { yields.Yield(); };
  Compile(paths);
  yields.Yield();
  Platform.Do_Events = [] {};
  const double peak = Peak_Bytes();
  const double start = Wall_Seconds();
  const double total = Best([&] { Compile(paths); });
  const double wall = (Wall_Seconds() - start) / Rounds;

  const std::string text = Read_Whole_File(paths.Program);
  const auto lines = static_cast<double>(std::count(text.begin(), text.end(), '\n'));
  const Record_List<Wire>& wires = Program_Wire.Rows();
  const auto count = static_cast<double>(wires.size());
  const Table<LineArc> records = Read_LineArc_Table(paths.LineArc_File);
  const double scan = Best([&] { Sink = Scan(text); });
  const double fields = Best([&] {
    Bare_Write(paths.Scratch, records.Rows);
    Bare_Write(paths.Scratch + "2", wires);
  });
  const std::string linearc_bytes = Read_Whole_File(paths.LineArc_File);
  const std::string wire_bytes = Read_Whole_File(paths.Wire_File);
  const double bytes = Best([&] {
    Write_Bytes(paths.Scratch, linearc_bytes);
    Write_Bytes(paths.Scratch + "2", wire_bytes);
  });
  const double megabytes = static_cast<double>(linearc_bytes.size() + wire_bytes.size()) / 1e6;

  std::printf("%s: %.0f lines, %.0f records, %.0f wires\n", PathFileName(paths.Program).c_str(),
              lines, static_cast<double>(records.Rows.size()), count);
  std::printf(
      "  total %.3f s (by the clock %.3f), %.0f lines/s, %.0f wires/s, %.0f MB at %.0f MB/s\n",
      total, wall, lines / total, count / total, megabytes, megabytes / total);
  std::printf(
      "  floor %.3f s (scan %.3f, write %.3f): ratio %.2f; bytes alone %.3f s: ratio %.2f\n",
      scan + fields, scan, fields, total / (scan + fields), scan + bytes, total / (scan + bytes));
  std::printf("  memory %.0f MB, %.0f bytes a wire; silence %.1f ms\n", peak / 1e6, peak / count,
              1e3 * yields.Longest);
}

void Report_Passes(const Paths& paths) {
  struct Pass {
    const char* Name;
    double Time;
  };
  const auto text = Text_Of(paths);
  Table<LineArc> records;
  Table<Wire> wires;
  const Pass passes[] = {
      {"text", Best([&] { Text_Of(paths); })},
      {"line pass", Best([&] { Run_Line_Pass(text, Compile_Operations()); })},
      {"LineArc file",
       Best([&] { Write_LineArc_Table(paths.Scratch, Compile_Tables.Program_LineArc); })},
      {"wire pass",
       Best([&] { wires = NIST_ConvertLineArctoWire(Compile_Tables.Program_LineArc); })},
      {"feed pass", Best([&] { Plan_Rates(wires.Rows); })},
      {"wire file", Best([&] { Write_Wire_Table(paths.Scratch, wires); })},
  };
  double sum = 0;
  for (const Pass& pass : passes) sum += pass.Time;
  for (const Pass& pass : passes) {
    std::printf("  %-12s %.3f s %3.0f %%\n", pass.Name, pass.Time, 100 * pass.Time / sum);
  }
}

void Report_Program(const Paths& paths) {
  Report_Total(paths);
  Report_Passes(paths);
  Table<Wire> wires = Read_Wire_Table(paths.Wire_File);
  Report_Tables(paths, wires);
  Report_Feed(wires);
}

void Report_Line_Pass(const Paths& paths) {
  const auto text = std::make_shared<GCode_Text>(Read_Whole_File(paths.Program));
  const double time = Best([&] { Run_Line_Pass(text, Compile_Operations()); });
  std::printf("%s: line pass alone %.3f s, %.0f ns a line\n", PathFileName(paths.Program).c_str(),
              time, time / text->Line_Count() * 1e9);
}

// In a process of its own.
void Apart(const std::function<void()>& body) {
  std::fflush(stdout);
  const pid_t child = ::fork();
  if (child == 0) {
    try {
      body();
    } catch (const Fault& fault) {
      std::printf("%s\n", fault.Description.c_str());
    }
    std::fflush(stdout);
    ::_exit(0);
  }
  int status = 0;
  if (child > 0) ::waitpid(child, &status, 0);
}

// As the generated programs want it: four decimals, centres relative to the start.
void Use_Setup_Of_Inputs() {
  Restore_Factory_Setup();
  MachineSetup.Axis_Format = "000.0000";
  MachineSetup.GC_IJ_Incremental = true;
}

}  // namespace

int main(int count, char** words) {
  if (count < 2) {
    std::fprintf(stderr, "usage: compile_bench INPUTS [FOLDER]\n");
    return 2;
  }
  const std::string inputs = words[1], folder = count > 2 ? words[2] : ".";
  Use_Setup_Of_Inputs();
  Application.Table_Folder = folder;
  const auto paths = [&](const char* program) {
    return Paths{Join_Path(inputs, program), Join_Path(folder, LineArc_Table_Name),
                 Join_Path(folder, Wire_Table_Name), Join_Path(folder, Scratch_Name)};
  };
  for (const char* program : {"contour_900k.ngc", "mixed_100k.ngc", "arcs_20k.ngc"}) {
    Apart([&] { Report_Program(paths(program)); });
  }
  Apart([&] { Report_Line_Pass(paths("contour_1m.ngc")); });
  for (const std::string_view name : {LineArc_Table_Name, Wire_Table_Name, Scratch_Name}) {
    const std::string file = Join_Path(folder, name);
    ::unlink(file.c_str());
    ::unlink((file + "2").c_str());
  }
  return 0;
}

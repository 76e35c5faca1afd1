// adapt_bench: a program of a million lines adapted.
//
//   adapt_bench PROGRAM [FOLDER]     FOLDER takes the bare write
//
// Times are of the processor, best of several rounds. The floor is what any rewriting needs: one
// scan of the text from left to right that finds each word's number, and a bare write of the new
// bytes.
#include "adapt/adapt.h"
#include "best_time.h"
#include "compiler/text/plain_number.h"
#include "core/paths.h"
#include "core/setup.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

using namespace norvik;
using bench::Best;

// The numbers of all words, added up so that nothing is left out.
double Bare_Scan(const GCode_Text& program) {
  double sum = 0;
  for (std::int32_t number = 1; number <= program.Line_Count(); ++number) {
    const std::string_view line = program.Line(number);
    const char *at = line.data(), *const end = at + line.size();
    while (at != end) {
      const char c = *at++;
      if ((c < 'A' || c > 'Z') && (c < 'a' || c > 'z')) continue;
      Plain_Number value;
      at = Scan_Plain_Number(at, end, value);
      sum += value.Value();
    }
  }
  return sum;
}

void Bare_Write(const std::string& path, std::string_view bytes) {
  const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
  while (!bytes.empty()) {
    const ssize_t count = ::write(file, bytes.data(), std::min<std::size_t>(bytes.size(), 1 << 16));
    if (count <= 0) break;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  ::close(file);
}

// The most that the process held, bytes.
double Most_Memory() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) * 1024;
}

}  // namespace

int main(int argument_count, char** arguments) {
  if (argument_count < 2) {
    std::puts("adapt_bench PROGRAM [FOLDER]");
    return 2;
  }
  const std::string path = Join_Path(argument_count > 2 ? arguments[2] : "/tmp", "adapt_bench.gc");
  MachineSetup.Axis_Format = "0.0000";
  const double empty = Most_Memory();
  const GCode_Text program(Read_Whole_File(arguments[1]));
  const auto bytes = static_cast<double>(program.Whole().size());
  const Adapt_Options options = Adapt_Options_Of_Setup();
  Adapted result = Adapt(program, options);
  const double memory = Most_Memory() - empty;
  const double time = Best([&] {
    result = {};
    result = Adapt(program, options);
  });
  const double scan = Best([&] {
    if (Bare_Scan(program) == 0.125) std::abort();
  });
  const double write = Best([&] { Bare_Write(path, result.Text); });
  std::printf(
      "%d lines, %.1f MB: adapted in %.3f s; scan %.3f s, write %.3f s; %.2f times the floor\n",
      program.Line_Count(), bytes / 1e6, time, scan, write, time / (scan + write));
  std::printf("memory %.2f times the text, the text itself and its lines included\n",
              memory / bytes);
  Adapt_Options simple = options;
  simple.Simplify = true;
  const double simplified = Best([&] { result = Adapt(program, simple); });
  std::printf("simplified in %.3f s to %zu lines\n", simplified, result.Old_Lines.size());
  ::unlink(path.c_str());
  return 0;
}

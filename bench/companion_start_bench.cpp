// companion_start_bench: how long a call of norvik-cli takes before its work begins.
//
//   companion_start_bench NORVIK_CLI MACHINE_FILE
//
// `setup get` of one key does nothing but start: load of the program, folders, machine file, tool
// file. Fifty calls; the median and the longest of the time that passes and of the processor's.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct Call_Times {
  double Passed = 0, Processor = 0;  // seconds
};

double Seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

Call_Times Time_One_Call(const std::string& program, const std::string& machine,
                         const std::string& home) {
  const auto start = std::chrono::steady_clock::now();
  const pid_t child = ::fork();
  if (child == 0) {
    ::dup2(::open("/dev/null", O_WRONLY), STDOUT_FILENO);
    ::execl(program.c_str(), program.c_str(), "--home", home.c_str(), "--machine", machine.c_str(),
            "setup", "get", "Axis_SPI_1", nullptr);
    std::_Exit(127);
  }
  int status = 0;
  rusage used{};
  ::wait4(child, &status, 0, &used);
  if (status != 0) {
    std::fprintf(stderr, "%s cannot be run with %s\n", program.c_str(), machine.c_str());
    std::exit(1);
  }
  const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
  return {passed.count(), Seconds(used.ru_utime) + Seconds(used.ru_stime)};
}

void Print_Row(const char* name, std::vector<Call_Times> calls, double Call_Times::*time) {
  std::ranges::sort(calls, {}, time);
  std::printf("%-18s median %.4f s   longest %.4f s\n", name, calls[calls.size() / 2].*time,
              calls.back().*time);
}

}  // namespace

int main(int argument_count, char** arguments) {
  if (argument_count != 3) {
    std::fprintf(stderr, "companion_start_bench NORVIK_CLI MACHINE_FILE\n");
    return 2;
  }
  std::string home = (std::filesystem::temp_directory_path() / "norvik_start_XXXXXX").string();
  if (::mkdtemp(home.data()) == nullptr) return 1;
  constexpr int rounds = 50;
  std::vector<Call_Times> calls;
  calls.reserve(rounds);
  for (int count = 0; count < rounds; ++count) {
    calls.push_back(Time_One_Call(arguments[1], arguments[2], home));
  }
  std::filesystem::remove_all(home);
  Print_Row("time passed", calls, &Call_Times::Passed);
  Print_Row("processor time", calls, &Call_Times::Processor);
  return 0;
}

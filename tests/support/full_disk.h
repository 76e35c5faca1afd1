// full_disk.h: a disk that fills while something is written.
//
// While an object of it lives, no file of the process grows beyond `bytes`.
#pragma once

#include <csignal>

#include <sys/resource.h>

namespace norvik {

class Full_Disk {
 public:
  explicit Full_Disk(rlim_t bytes = 1000) : Handler(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &Before);
    const rlimit small{bytes, Before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &small);
  }
  ~Full_Disk() {
    ::setrlimit(RLIMIT_FSIZE, &Before);
    std::signal(SIGXFSZ, Handler);
  }
  Full_Disk(const Full_Disk&) = delete;
  Full_Disk& operator=(const Full_Disk&) = delete;

 private:
  void (*Handler)(int);
  rlimit Before{};
};

}  // namespace norvik

// foreign_file.h: files that a machine file names.
//
// A machine file may come from a stranger, so what it names need not be what it says. Such files
// must be regular files on a disk, with a size that their purpose explains; devices, pipes and the
// files that the kernel makes up are refused.
#pragma once

#include <cstdint>
#include <string>

namespace norvik {

inline constexpr std::int64_t Largest_Macro_File = 50'000'000, Largest_Tool_File = 1'000'000,
                              Largest_Sound_File = 16 << 20;

// Raises a file fault, which says what is wrong and what to do, unless it may be read.
void Look_At_Foreign_File(const std::string& path, std::int64_t largest);
// The whole file. Raises a file fault that says what is wrong and what to do.
std::string Read_Foreign_File(const std::string& path, std::int64_t largest);

}  // namespace norvik

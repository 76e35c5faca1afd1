// paths.h: pieces of paths and whole files. Both "\" and "/" separate folders.
#pragma once

#include "core/fault.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

std::string PathDirectory(std::string_view path);  // up to and including the last separator
std::string PathFileName(std::string_view path);   // after the last separator
std::string FileNameStem(std::string_view name);   // before the first "."
std::string ChangeExtension(std::string_view name, std::string_view extension);  // without "."
std::string PathExtension(std::string_view path);  // from the last "." on; no ".": the whole name
bool FileExists(const std::string& path);

// `folder` and `name` with one separator between them.
std::string Join_Path(std::string_view folder, std::string_view name);

// The whole file. Raises a file fault whose text says what is wrong (missing, a folder, no right).
std::string Read_Whole_File(const std::string& path);
// The same, but absent where there is no such file.
std::optional<std::string> Read_If_There(const std::string& path);
// Writes a temporary neighbour, flushes and renames it over `path`, so that a failure leaves the
// old file as it was. Raises a file fault that says what to do.
void Replace_File(const std::string& path, std::string_view bytes);
// The fault of a failed system call: `what` could not be done with the file, `reason` is its errno.
// The text says what to do about it.
Fault File_Fault(const std::string& path, const char* what, int reason);
// Text cut at CR LF, LF or CR; a last line without an end counts.
std::vector<std::string> Split_Lines(std::string_view text);

std::string Upper(std::string_view text);  // ASCII letters only
std::string Trim(std::string_view text);   // blanks at both ends

}  // namespace norvik

// import.h: pictures to a raster carving.
#pragma once

#include <string>

namespace norvik {

// False when the file does not exist, after a beep. The picture is read by `Platform.Load_Picture`.
bool Import_Bitmap_File(const std::string& path);

}  // namespace norvik

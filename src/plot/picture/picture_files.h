// picture_files.h: reading and writing picture files through the toolkit.
#pragma once

#include "platform/platform.h"
#include "plot/plot_image.h"

#include <optional>
#include <string>

namespace norvik {

// Decodes a JPG, BMP or GIF file: palettes as their colours, transparent places white, orientation
// marks ignored, of an animation the first picture. Absent when the file cannot be read, is of
// another kind, or ends too early: half a picture would be carved as a flat area.
std::optional<Picture> Read_Picture_File(const std::string& path);

// Writes a picture in the format of the file's extension (".png" and what else the toolkit writes).
// Raises a file fault that says what to do.
void Write_Picture_File(const std::string& path, const Plot_Image& picture);

// Sets `Platform.Load_Picture`.
void Install_Picture_Reader();

}  // namespace norvik

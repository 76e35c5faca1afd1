// reader.h: the ENTITIES section of an ASCII DXF file, into the entity table.
//
// The file is pairs of text lines, a group code and a value. Everything before a value "ENTITIES"
// is skipped, blocks included; block references are not expanded. From there each pair of code 0
// names an entity, and the pairs up to the next code 0 are its fields:
//
// | code           | field                                                                   |
// |----------------|-------------------------------------------------------------------------|
// | 8              | layer, as written (upper-cased for polylines)                           |
// | 10..13, 20..23 | X and Y of points 1 to 4, rounded by `Axis_Format`                      |
// | 30, 31         | Z of points 1 and 2; not taken when `DXF_Ingore_Depth` is set           |
// | 32, 33         | Z of points 3 and 4                                                     |
// | 40, 50, 51     | radius, start and end angle in degrees                                  |
// | 70             | bit 0: the polyline is closed                                           |
//
// Entities are recognised by the end of their name, so that "MYARC" is an ARC; only LINE must match
// as a whole. An ARC is cut backwards, from its end to its start, clockwise. A circle is two half
// circles. Bulges, elevations and extrusions are not taken; the import report counts them, as it
// counts entities of other kinds and those that lack a coordinate.
#pragma once

#include <string>

namespace norvik {

// Appends the rows of `path` to `DXF_Entity`. Yields every 500 pairs; ESC ends the load. Failures
// are logged as "DXF Import Error"; a value that is no number counts as missing.
void DXF_Load(const std::string& path);

}  // namespace norvik

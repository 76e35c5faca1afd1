// full_reader.h: a plotter file as a plotter reads it (correction `HPGL_All_Pairs`).
//
//   bytes -> Command (two letters, numbers) -> user units --SC, IP, RO--> plotter units -> records
//
// | commands                | read as                                                            |
// |-------------------------|--------------------------------------------------------------------|
// | IN DF SP PU PD PA PR    | start, pens, moves with all their pairs, absolute or relative      |
// | SC IP RO                | scale between the corners P1 and P2, turn by quarter turns         |
// | CI AA AR AT RT          | circles and arcs, as arcs where the scale is the same in X and Y   |
// | EA ER RA RR EW WG       | rectangles and wedges, their outlines only                         |
// | PM EP FP                | polygons, their outlines only                                      |
// | PE                      | encoded polylines                                                  |
// | a pen down and up again | a dot: a plunge                                                    |
//
// 1016 plotter units are an inch. Commands may run together. What sets a plotter up for other
// things (line types, fills, sizes of letters) is passed over with all its numbers; labels and
// what else would draw and is not read is counted as left out.
#pragma once

#include <string>

namespace norvik {

// Writes the records of the file to `line_file`, thirteen fields each, and reports. Raises a file
// fault. ESC ends the load.
void HPGL_Load_Full(const std::string& path, const std::string& line_file);

}  // namespace norvik

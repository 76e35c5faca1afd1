// wire_pass.h: records to wires.
//
//   Program_LineArc --NIST_ConvertLineArctoWire--> wires
//     control record   copied, one wire without motion
//     line             one wire
//     arc              a chain of chords (compiler/arcs/chords.h), each one wire
//
// The machine only ever executes straight wires. Coordinates stay in units of the setup; scales,
// directions and backlash belong to the execution.
//
//   start            chord 1             chord 2          end of the record
//     o-------------------->o-------------------->o-------------------->o
//     record's Out here     Out 0..3 = 1          Out 0..3 = 1
//     current start = start, then the end of each chord
//
// A line's or an arc's output commands ride on its first wire; spindle and coolant are back at
// "unchanged" on the next, the auxiliary output repeats its command until another one comes. Dwell,
// compensation and S word of line wires are the interpreter's as they stand when the pass runs,
// that is at the end of the program, not those of the record.
#pragma once

#include "compiler/state/tables.h"

namespace norvik {

// Cuts `records` into wires with the modes as they stand in `Compiler`. The rows of `records` leave
// memory as they are used up; afterwards it is empty. ESC, polled once a record, ends the pass
// early and is cleared. Any fault is logged as "NIST_ConvertLineArctoWire_Error" and what was made
// so far stands.
Table<Wire> NIST_ConvertLineArctoWire(Table<LineArc>&& records);
// The same with the records left as they are.
Table<Wire> NIST_ConvertLineArctoWire(const Table<LineArc>& records);

}  // namespace norvik

// sort.h: the order in which the entities of a drawing are cut.
//
// Group by group, rows from the group's first place on:
//
//   1. Look through the rows that are left for the open chain that begins nearest to the tool. A
//      free end, one that meets no end of another row left, is the end of an open chain. Each row
//      that is nearer than the best so far changes places with the row in the slot, turned so that
//      its near end comes first. A row of which only the second end is free counts by its other
//      end once it is taken; so a later row may replace it although it lies farther.
//   2. Without a free end anywhere only closed chains are left: the row in the slot begins.
//   3. Follow the chain: the first row in table order that meets the tool's point and depth takes
//      the next place, turned to begin there; when there is none the chain has ended.
//
// The result depends on the order of the table, through ties as well as through the rows that step
// 1 moves. `End_Index` answers what meets what, `Record_Walk` finds the candidates of step 1 in
// table order; the outcome is row for row that of the plain scan, in n log n for drawings in any
// usual order.
#pragma once

namespace norvik {

// With `DXF_Sort_Lines`: sorts the rows of `DXF_Entity` within each group. The tool starts at (0,
// 0) and stays where a group ends. Yields every 50 rows; ESC leaves the rest as it stands. Failures
// are logged as "DXF Sort Entities Error".
void DXF_Sort_Entities_Step();

}  // namespace norvik

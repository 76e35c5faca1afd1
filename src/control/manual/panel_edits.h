// panel_edits.h: numbers that the operator changes on the panel: positions, Z levels, feeds.
//
// All ask in an input box. A box holds up the thread and with it a running move, so that none opens
// while the machine moves.
#pragma once

namespace norvik {

// Axis 1..4: asks for a new live position; the machine does not move.
void Label_Axis_Pos_DblClick(int axis);
// Live and commanded position of the axis become 0.
void Command_Zero_Pos_Click(int axis);

// Z level 0..2: travel, normal cut, deep cut.
void Label_Tool_Height_Click(int index);
void Load_Z_Levels();
// Writes the three levels to section `Tool` of the machine file.
void Save_Cut_Depths();

void Label_FeedRate_Cut_Click();
void Label_FeedRate_Travel_Click();
// Also of the jog window.
void Label_FeedRate_Jogging_Click();

}  // namespace norvik

// The rows that describe the drawing, the importers and what they write.
#include "core/format.h"
#include "core/setup_rows.h"

namespace norvik {

namespace {

using M = Machine_Setup;

constexpr double Longest = 1e6;  // units
constexpr double Most_Passes = 1000;

}  // namespace

namespace {

Setup_Row_List Colour_And_Arc_Rows() {
  return {
      Family<&M::Plot_Color>("General", "Plot_Color_<n>")
          .Called(page::Plot, "Colour of <n>")
          .Each("travel|cut|deep cut|background|grid|cursor|cursor blinking")
          .Changed(After_Change::Redraw)
          .Plain("16711680|24277|7048960|16448250|10526880|1316060|38655")
          .Loads(0, 0)
          .Between(0, 16777215)
          .Saved(Save_Place::Plot_Colors)
          .Says("Blue, green and red as one number. Only that of travel is read; the others are "
                "kept for other programs."),
      Key<&M::Arc_Resolution>("General", "Arc_Resolution")
          .Called(page::Arcs, "Lines per unit of radius")
          .Changed(After_Change::Recompile)
          .Star("180")
          .In("chords per unit of radius")
          .Between(3, 32767)
          .Saved(Save_Place::Plot_And_Arcs)
          .Says("An arc is cut into so many lines for each unit of its radius; in millimetres into "
                "a 32nd of them."),
      Key<&M::Arc_Max_Segments>("General", "Arc_Max_Segments")
          .Called(page::Arcs, "Most lines of an arc")
          .Changed(After_Change::Recompile)
          .Star("360")
          .Between(3, 32767)
          .Saved(Save_Place::Plot_And_Arcs)
          .Says("However large its radius."),
      Key<&M::Arc_Radius_Ignore>("General", "Arc_Radius_Ignore")
          .Called(page::Arcs, "Same number for every arc")
          .One_Of({{"0", "no"}, {"1", "yes"}})
          .Changed(After_Change::Recompile)
          .Plain("0")
          .Saved(Save_Place::Plot_And_Arcs)
          .Says("Every arc gets the same number of lines, whatever its radius."),
  };
}

Setup_Row_List Plot_View_Rows() {
  return {
      Key<&M::Plot_Bit_Radius_Enable>("General", "Plot_Bit_Radius_Enable")
          .Called(page::Plot, "Draw all lines with one width")
          .One_Of({{"0", "no"}, {"1", "yes"}})
          .Changed(After_Change::Redraw)
          .Plain("1")
          .Saved(Save_Place::Plot_And_Arcs)
          .Says("Every line gets the width below; off: that of its tool."),
      Key<&M::Plot_FastDraw>("General", "Plot_FastDraw")
          .Called(page::Plot, "Draw the program at once")
          .One_Of({{"0", "no"}, {"1", "yes"}})
          .Plain("1")
          .Saved(Save_Place::Plot_And_Arcs)
          .Says("Off: the drawing can be watched."),
      Key<&M::Plot_Auto_Loading>("General", "Plot_Auto_Loading")
          .Called(page::General, "Compile a program when it is opened")
          .One_Of({{"0", "no"}, {"1", "yes"}})
          .Plain("1")
          .Saved(Save_Place::Plot_And_Arcs)
          .Says("And draw it."),
      Key<&M::Plot_Bit_Radious>("General", "Plot_Bit_Radious")
          .Called(page::Plot, "Width of the drawn bit")
          .Changed(After_Change::Redraw)
          .Star("0.0001")
          .In("units")
          .Between(0, Longest)
          .Saved(Save_Place::Plot_And_Arcs)
          .Says("Width of lines for which no tool gives one."),
      Key<&M::Plot_Show_Grid>("General", "Plot_Show_Grid")
          .Called(page::Plot, "Show the grid")
          .One_Of({{"0", "no"}, {"1", "yes"}})
          .Changed(After_Change::Redraw)
          .Plain("1")
          .Saved(Save_Place::Plot_And_Arcs)
          .Says("Draws the grid of the table and the strip with the Z levels."),
      Key<&M::Plot_Centered>("General", "Plot_Centered")
          .Called(page::Plot, "Origin in the middle")
          .Changed(After_Change::Redraw)
          .Saved(Save_Place::Plot_And_Arcs)
          .Says("Puts the origin into the middle of the drawn table; off: into its corner."),
      Key<&M::Parallel_Time_Constant>("General", "Parallel_Time_Constant")
          .Called(page::Drive, "Time constant")
          .Star("50")
          .In("microseconds")
          .Between(0, 1e6)
          .Saved(Save_Place::Time_Constant)
          .Says("What a half step costs on this computer by itself, taken off every delay. The "
                "timing window finds it. Above 0: a stored 0 counts as never set."),
      Family<&M::Default_Offset>("General", "Default_Offset_<n>")
          .Called(page::Text, "Offset, <n>")
          .Each("X|Y|Z")
          .Star("0")
          .In("units")
          .Saved(Save_Place::Offsets)
          .Says("What the offset function offers."),
      Key<&M::Offset_Duplicate>("General", "Offset_Duplicate")
          .Called(page::Text, "Offset adds a copy")
          .Saved(Save_Place::Offsets)
          .Says("The offset function appends a moved copy; off: it moves the program."),
  };
}

}  // namespace

Setup_Row_List Plot_Rows() {
  return Joined({Colour_And_Arc_Rows(), Plot_View_Rows()});
}

namespace {

// The level that a layer's depth starts or ends at until the operator gives one.
template <int Level>
std::string Tool_Level(const M& setup, int) {
  return Shortest_Text(setup.Axis_Tool_Height[Level]);
}

Setup_Row_List DXF_Rows() {
  constexpr std::string_view section = "DXF_Info";
  return {
      Key<&M::DXF_Cut_2_Layer>(section, "DXF_Cut_2_Layer")
          .Called(page::Dxf, "Layer of deep cuts")
          .Saved(Save_Place::DXF_Layer)
          .Says("Name of the layer that is cut at the deep level by HPGL, Gerber and picture "
                "import. The DXF import prints no depth by it."),
      Key<&M::DXF_Sort_Layers>(section, "DXF_Sort_Layers")
          .Called(page::Dxf, "Choose and sort layers")
          .Saved(Save_Place::DXF)
          .Says("Shows the list of layers and cuts layer by layer."),
      Key<&M::DXF_Sort_Lines>(section, "DXF_Sort_Lines")
          .Called(page::Dxf, "Shorten the way")
          .Saved(Save_Place::DXF_Lines)
          .Says("Puts the lines in an order with little travel between them."),
      Key<&M::DXF_Ingore_Depth>(section, "DXF_Ingore_Depth")
          .Called(page::Dxf, "Depths from the layer table")
          .Saved(Save_Place::DXF)
          .Says("Takes depths from the table of layers; off: from the Z of the drawing."),
      Key<&M::DXF_Line_Tolerance>(section, "DXF_Line_Tolerance")
          .Called(page::Dxf, "Ends meet within")
          .Plain("0.001")
          .In("units")
          .Between(0, Longest)
          .Saved(Save_Place::DXF)
          .Says("Ends closer than this belong to one contour, with no lift between them. HPGL and "
                "picture import use it too."),
      Key<&M::DXF_Passes_to_Depth>(section, "DXF_Passes_to_Depth")
          .Called(page::Dxf, "Passes of a drawing")
          .Plain("1")
          .Between(1, Most_Passes)
          .Saved(Save_Place::DXF)
          .Says("From 2 on a line that does not continue the last one begins with a cutting move "
                "to its start. How many passes are cut the layer table says."),
      Key<&M::DXF_Passes_to_Depth_Deep_Cut_Only>(section, "DXF_Passes_to_Depth_Deep_Cut_Only")
          .Called(page::Dxf, "Passes for deep cuts only")
          .Saved(Save_Place::DXF)
          .Says("Kept for other programs; the import does not look at it."),
      Key<&M::DXF_Pass_Type>(section, "DXF_Pass_Type")
          .Called(page::Dxf, "Kind of passes")
          .Plain("1")
          .Saved(Save_Place::DXF)
          .Says("Kept for other programs; the import does not look at it."),
      Family<&M::DXF_Import_Offset>(section, "DXF_Import_Offset_<n>")
          .Called(page::Dxf, "Offset, <n> of a drawing")
          .Each("X|Y|Z")
          .Plain("0")
          .In("units")
          .Saved(Save_Place::DXF)
          .Says("Added to every coordinate of the drawing."),
      Family<&M::DXF_MultiDepth_Layer>(section, "DXF_MultiDepth_Layer_<n>")
          .Called(page::Dxf, "Layer table, row <n>: layer")
          .Plain("None")
          .Saved(Save_Place::DXF)
          .Says("Name of the layer in capital letters; `None`: the row is free."),
      Family<&M::DXF_MultiDepth_Passes>(section, "DXF_MultiDepth_Passes_<n>")
          .Called(page::Dxf, "Layer table, row <n>: passes")
          .Plain("1")
          .Between(0, Most_Passes)
          .Saved(Save_Place::DXF)
          .Says("Passes of this layer; 0: it is left out."),
      Family<&M::DXF_MultiDepth_StartingDepth>(section, "DXF_MultiDepth_StartingDepth_<n>")
          .Called(page::Dxf, "Layer table, row <n>: from Z")
          .Shown_As("the travel level")
          .Computed(Tool_Level<0>)
          .In("units")
          .Saved(Save_Place::DXF)
          .Says("Z above the first pass."),
      Family<&M::DXF_MultiDepth_EndingDepth>(section, "DXF_MultiDepth_EndingDepth_<n>")
          .Called(page::Dxf, "Layer table, row <n>: to Z")
          .Shown_As("the normal cut level")
          .Computed(Tool_Level<1>)
          .In("units")
          .Saved(Save_Place::DXF)
          .Says("Z of the last pass."),
  };
}

Setup_Row_List HPGL_Rows() {
  constexpr std::string_view section = "HPGL_Info";
  return {
      Key<&M::HPGL_Sort_Lines>(section, "HPGL_Sort_Lines")
          .Called(page::Hpgl, "Shorten the way of a plot")
          .Saved(Save_Place::HPGL)
          .Says("Puts the lines in an order with little travel between them."),
      Key<&M::HPGL_PenSize>(section, "HPGL_PenSize")
          .Called(page::Hpgl, "Width of the pen")
          .Star("0.03")
          .In("units")
          .Between(0, Longest)
          .Saved(Save_Place::HPGL_Pen)
          .Says("Kept as the tool's diameter; changes no line of the program."),
      Key<&M::HPGL_Ingore_Depth>(section, "HPGL_Ingore_Depth")
          .Called(page::Hpgl, "Cut in passes")
          .Saved(Save_Place::HPGL)
          .Says("Cuts in passes from the travel level down to the normal cut level."),
      Key<&M::HPGL_Passes_to_Depth>(section, "HPGL_Passes_to_Depth")
          .Called(page::Hpgl, "Passes of a plot")
          .Plain("1")
          .Between(1, Most_Passes)
          .Saved(Save_Place::HPGL)
          .Says("Passes until the depth is reached."),
      Key<&M::HPGL_Multiple_Pen_Enable>(section, "HPGL_Multiple_Pen_Enable")
          .Called(page::Hpgl, "Each pen its own depth and speeds")
          .Saved(Save_Place::HPGL)
          .Says("Takes the values of the pens below."),
      Key<&M::HPGL_Multiple_Retool_Pause>(section, "HPGL_Multiple_Retool_Pause")
          .Called(page::Hpgl, "Pause at each change of the pen")
          .Saved(Save_Place::HPGL)
          .Says("Writes M06 there."),
      Family<&M::HPGL_Multiple_Pen_Cutting_IPM>(section, "HPGL_Multiple_Pen_Cutting_IPM_<n>")
          .Called(page::Hpgl, "Pen <n>: cutting speed")
          .In("IPM")
          .Saved(Save_Place::HPGL)
          .Says("Empty: the usual one."),
      Family<&M::HPGL_Multiple_Pen_Plunge_Depth>(section, "HPGL_Multiple_Pen_Plunge_Depth_<n>")
          .Called(page::Hpgl, "Pen <n>: depth")
          .In("units")
          .Saved(Save_Place::HPGL)
          .Says("Empty: the usual one."),
      Family<&M::HPGL_Multiple_Pen_Plunge_IPM>(section, "HPGL_Multiple_Pen_Plunge_IPM_<n>")
          .Called(page::Hpgl, "Pen <n>: plunge speed")
          .In("IPM")
          .Saved(Save_Place::HPGL)
          .Says("Empty: the usual one."),
  };
}

Setup_Row_List Gerber_Rows() {
  constexpr std::string_view section = "Gerber_Info";
  return {
      Key<&M::Gerber_Clean_Data>(section, "Gerber_Clean_Data")
          .Called(page::Gerber, "Remove doubled lines")
          .Saved(Save_Place::Gerber)
          .Says("Removes doubled and overlapping lines before anything else."),
      Key<&M::Gerber_Isolation>(section, "Gerber_Isolation")
          .Called(page::Gerber, "Cut around the copper")
          .Saved(Save_Place::Gerber)
          .Says("Off: the outline of every line and pad is cut."),
      Key<&M::Gerber_Isolation_Width>(section, "Gerber_Isolation_Width")
          .Called(page::Gerber, "Distance from the copper")
          .Star("0.0001")
          .In("units")
          .Between(0, Longest)
          .Saved(Save_Place::Gerber)
          .Says("How far beside the copper the path lies."),
      Key<&M::Gerber_Isolation_Minimum_Poly_Width>(section, "Gerber_Isolation_Minimum_Poly_Width")
          .Called(page::Gerber, "Lines are thin up to")
          .Star("0.009")
          .In("units")
          .Between(0, Longest)
          .Saved(Save_Place::Gerber)
          .Says("Lines no wider than this have no outline; pads below it are left out."),
      Key<&M::Gerber_Isolation_Sort_Lines>(section, "Gerber_Isolation_Sort_Lines")
          .Called(page::Gerber, "Shorten the way around the copper")
          .Saved(Save_Place::Gerber)
          .Says("Puts the paths in an order with little travel between them."),
      Key<&M::Gerber_Isolation_Cleanup_Lines>(section, "Gerber_Isolation_Cleanup_Lines")
          .Called(page::Gerber, "Remove covered lines")
          .Saved(Save_Place::Gerber)
          .Says("Removes lines that another one covers, after the outlines were made."),
      Key<&M::Gerber_Isolation_SmallLines_Function>(section, "Gerber_Isolation_SmallLines_Function")
          .Called(page::Gerber, "Cut thin lines along their middle")
          .Saved(Save_Place::Gerber)
          .Says("Off: they are left out."),
      Key<&M::Gerber_Isolation_Multi_Cut_Lines>(section, "Gerber_Isolation_Multi_Cut_Lines")
          .Called(page::Gerber, "Several passes around the copper")
          .Saved(Save_Place::Gerber)
          .Says("Each farther out than the one before."),
      Key<&M::Gerber_Isolation_Multi_Cut_Count>(section, "Gerber_Isolation_Multi_Cut_Count")
          .Called(page::Gerber, "Number of passes around the copper")
          .Star("2")
          .Between(1, Most_Passes)
          .Saved(Save_Place::Gerber)
          .Says("Where there are several."),
      Key<&M::Gerber_Isolation_Multi_Cut_Gap>(section, "Gerber_Isolation_Multi_Cut_Gap")
          .Called(page::Gerber, "Distance between two passes")
          .Star("0.002")
          .In("units")
          .Between(0, Longest)
          .Saved(Save_Place::Gerber)
          .Says("How much farther out each pass lies."),
  };
}

}  // namespace

Setup_Row_List Drawing_Rows() {
  return Joined({DXF_Rows(), HPGL_Rows(), Gerber_Rows()});
}

namespace {

Setup_Row_List Insertion_Rows() {
  return {
      Key<&M::GC_IJ_Incremental>("G_CODE", "GC_IJ_Incremental")
          .Called(page::Arcs, "I and J count from the arc's start")
          .Changed(After_Change::Recompile)
          .Saved(Save_Place::Arc_Centers)
          .Says("Off: they are the coordinates of the centre. Set it as the programs mean it; a "
                "wrong choice makes other arcs."),
      Key<&M::Auto_Dwell_Insertion>("General", "Auto_Dwell_Insertion")
          .Called(page::Inserted, "Dwell at each contour")
          .Saved(Save_Place::Dwell_And_Insertion)
          .Says("A dwell at the start of each contour and after each hole."),
      Key<&M::Gcode_DwellTime_Default>("General", "Gcode_DwellTime_Default")
          .Called(page::Inserted, "Length of the dwell")
          .Star("2")
          .In("s")
          .Between(0, 86400)
          .Saved(Save_Place::Dwell_And_Insertion)
          .Says("Of the dwells that importers insert."),
      Key<&M::Auto_Spindle_OnOff_Insertion>("General", "Auto_Spindle_OnOff_Insertion")
          .Called(page::Inserted, "Spindle off between contours")
          .Saved(Save_Place::Dwell_And_Insertion)
          .Says("Stops the spindle for each travel; off: it is switched on once."),
      Key<&M::Auto_Flood_OnOff_Insertion>("General", "Auto_Flood_OnOff_Insertion")
          .Called(page::Inserted, "Flood coolant")
          .Saved(Save_Place::Dwell_And_Insertion)
          .Says("Switches it on at the start."),
      Key<&M::Auto_Mist_OnOff_Insertion>("General", "Auto_Mist_OnOff_Insertion")
          .Called(page::Inserted, "Mist coolant")
          .Saved(Save_Place::Dwell_And_Insertion)
          .Says("Switches it on at the start."),
      Key<&M::Plot_Dwell_Enable>("General", "Plot_Dwell_Enable")
          .Called(page::Plot, "The drawing waits at dwells")
          .Saved(Save_Place::Dwell_And_Insertion)
          .Says("As long as the machine would."),
      Key<&M::Gcode_LineNodes>("General", "Gcode_LineNodes")
          .Called(page::Plot, "Mark where the spindle changes")
          .Changed(After_Change::Redraw)
          .Saved(Save_Place::Dwell_And_Insertion)
          .Says("A mark at each point at which it goes on or off."),
  };
}

Setup_Row_List Excellon_Rows() {
  constexpr std::string_view section = "Excellon";
  return {
      Key<&M::Excellon_Sort_Size>(section, "Excellon_Sort_Size")
          .Called(page::Excellon, "Sort by size")
          .Saved(Save_Place::Excellon)
          .Says("Kept for other programs; holes are always grouped by tool."),
      Key<&M::Excellon_Sort_Location>(section, "Excellon_Sort_Location")
          .Called(page::Excellon, "Shorten the way between holes")
          .Saved(Save_Place::Excellon)
          .Says("Drills them in an order with little travel."),
      Key<&M::Excellon_Default_Drill_Size>(section, "Excellon_Default_Drill_Size")
          .Called(page::Excellon, "Drill without a size")
          .Star("0.028")
          .In("units")
          .Between(0, Longest)
          .Saved(Save_Place::Excellon)
          .Says("Diameter of a drill whose size the file does not give."),
      Key<&M::Excellon_Integer_Format>(section, "Excellon_Integer_Format")
          .Called(page::Excellon, "Digits in front of the point")
          .Star("2")
          .Between(1, 10)
          .Saved(Save_Place::Excellon)
          .Says("In numbers written without a point."),
      Key<&M::Excellon_Decimal_Format>(section, "Excellon_Decimal_Format")
          .Called(page::Excellon, "Digits behind the point")
          .Star("3")
          .Between(1, 10)
          .Saved(Save_Place::Excellon)
          .Says("In numbers written without a point. One too many makes a drawing ten times too "
                "large."),
      Key<&M::Excellon_Zero_Format>(section, "Excellon_Zero_Format")
          .Called(page::Excellon, "The file keeps")
          .One_Of({{"1", "leading zeros"}, {"2", "trailing zeros"}})
          .Star("2")
          .Saved(Save_Place::Excellon)
          .Says("Which zeros numbers without a point are written with."),
  };
}

Setup_Row_List Scale_Rows() {
  return {
      Key<&M::Scale_Cnvrt_Metric_X>("General", "Scale_Cnvrt_Metric_X")
          .Called(page::Text, "To millimetres, X")
          .Star("25.4")
          .Saved(Save_Place::Scales)
          .Says("Factor of the conversion to millimetres; R takes it too."),
      Key<&M::Scale_Cnvrt_Metric_Y>("General", "Scale_Cnvrt_Metric_Y")
          .Called(page::Text, "To millimetres, Y")
          .Star("25.4")
          .Saved(Save_Place::Scales)
          .Says("Factor of the conversion to millimetres."),
      Key<&M::Scale_Cnvrt_Metric_Z>("General", "Scale_Cnvrt_Metric_Z")
          .Called(page::Text, "To millimetres, Z")
          .Star("25.4")
          .Saved(Save_Place::Scales)
          .Says("Factor of the conversion to millimetres."),
      Key<&M::Scale_Cnvrt_Imperial_X>("General", "Scale_Cnvrt_Imperial_X")
          .Called(page::Text, "To inches, X")
          .Star("0.039370078")
          .Saved(Save_Place::Scales)
          .Says("Factor of the conversion to inches; R takes it too."),
      Key<&M::Scale_Cnvrt_Imperial_Y>("General", "Scale_Cnvrt_Imperial_Y")
          .Called(page::Text, "To inches, Y")
          .Star("0.039370078")
          .Saved(Save_Place::Scales)
          .Says("Factor of the conversion to inches."),
      Key<&M::Scale_Cnvrt_Imperial_Z>("General", "Scale_Cnvrt_Imperial_Z")
          .Called(page::Text, "To inches, Z")
          .Star("0.039370078")
          .Saved(Save_Place::Scales)
          .Says("Factor of the conversion to inches."),
  };
}

}  // namespace

Setup_Row_List GCode_Rows() {
  return Joined({Insertion_Rows(), Excellon_Rows(), Scale_Rows()});
}

namespace {

Setup_Row_List Picture_Rows() {
  constexpr std::string_view section = "Bitmap";
  return {
      Key<&M::BMAP_Material_Size_X>(section, "BMAP_Material_Size_X")
          .Called(page::Pictures, "Width")
          .Star("7")
          .In("units")
          .Between(0, Longest)
          .Saved(Save_Place::Bitmap)
          .Says("Width that the picture takes."),
      Key<&M::BMAP_Material_Size_Y>(section, "BMAP_Material_Size_Y")
          .Called(page::Pictures, "Height")
          .Star("7")
          .In("units")
          .Between(0, Longest)
          .Saved(Save_Place::Bitmap)
          .Says("Height that the picture takes."),
      Key<&M::BMAP_Material_Size_Z>(section, "BMAP_Material_Size_Z")
          .Called(page::Pictures, "Depth between black and white")
          .Star("1")
          .In("units")
          .Between(0, Longest)
          .Saved(Save_Place::Bitmap)
          .Says("White is the upper surface, black lies this much below it."),
      Key<&M::BMAP_Travel_Height>(section, "BMAP_Travel_Height")
          .Called(page::Pictures, "Height of travel")
          .Plain("1.5")
          .In("units")
          .Saved(Save_Place::Bitmap)
          .Says("Above the upper surface."),
      Key<&M::BMAP_Increment_X>(section, "BMAP_Increment_X")
          .Called(page::Pictures, "Distance of two points, X")
          .Plain("0.125")
          .In("units")
          .Between(0, Longest)
          .Saved(Save_Place::Bitmap)
          .Says("The finer, the longer the program."),
      Key<&M::BMAP_Increment_Y>(section, "BMAP_Increment_Y")
          .Called(page::Pictures, "Distance of two points, Y")
          .Plain("0.125")
          .In("units")
          .Between(0, Longest)
          .Saved(Save_Place::Bitmap)
          .Says("The finer, the longer the program."),
      Key<&M::BMAP_Rotate90>(section, "BMAP_Rotate90")
          .Called(page::Pictures, "Turn by 90 degrees")
          .One_Of({{"0", "no"}, {"1", "yes"}})
          .Plain("0")
          .Saved(Save_Place::Bitmap)
          .Says("X and Y of the picture change places."),
      Key<&M::BMAP_Invert_Z>(section, "BMAP_Invert_Z")
          .Called(page::Pictures, "Black is high")
          .One_Of({{"0", "no"}, {"1", "yes"}})
          .Plain("0")
          .Saved(Save_Place::Bitmap)
          .Says("Black and white change their depths."),
      Key<&M::BMAP_Sway_XY>(section, "BMAP_Sway_XY")
          .Called(page::Pictures, "Long strokes along")
          .One_Of({{"0", "Y"}, {"1", "X"}})
          .Plain("0")
          .Saved(Save_Place::Bitmap)
          .Says("The direction in which the tool goes to and fro."),
  };
}

Setup_Row_List Picture_Offset_And_Sound_Rows() {
  constexpr std::string_view section = "Bitmap";
  return {
      Key<&M::BMAP_Import_Offset_X>(section, "BMAP_Import_Offset_X")
          .Called(page::Pictures, "Offset, X of a picture")
          .Plain("0")
          .In("units")
          .Saved(Save_Place::Bitmap)
          .Says("Added to every X."),
      Key<&M::BMAP_Import_Offset_Y>(section, "BMAP_Import_Offset_Y")
          .Called(page::Pictures, "Offset, Y of a picture")
          .Plain("0")
          .In("units")
          .Saved(Save_Place::Bitmap)
          .Says("Added to every Y."),
      Key<&M::BMAP_Import_Offset_Z>(section, "BMAP_Import_Offset_Z")
          .Called(page::Pictures, "Offset, Z of a picture")
          .Plain("0")
          .In("units")
          .Saved(Save_Place::Bitmap)
          .Says("Added to every Z."),
      Key<&M::BMAP_Passes_to_Depth>(section, "BMAP_Passes_to_Depth")
          .Called(page::Pictures, "Passes of a picture")
          .Star("1")
          .Between(1, Most_Passes)
          .Saved(Save_Place::Bitmap)
          .Then(After_Load::Send_To_Controller)
          .Says("Passes until the depth is reached."),
      Family<&M::Sound_Files>("Sounds", "Sound_Files_<n>")
          .Called(page::Sounds, "<n>")
          .Each("Play|Step|Pause|Retooling|Stopped|E-stop pressed|Compile finished|Motion "
                "finished|Spare|Spare 2|Spare 3")
          .Saved(Save_Place::Sounds)
          .Says("Sound file; `Disabled` or empty: silence."),
  };
}

}  // namespace

Setup_Row_List Bitmap_Rows() {
  return Joined({Picture_Rows(), Picture_Offset_And_Sound_Rows()});
}

}  // namespace norvik

// The rows that describe the drawing, the importers and what they write.
#include "core/format.h"
#include "core/setup_rows.h"

namespace norvik {

namespace {

using M = Machine_Setup;

constexpr double Longest = 1e6;  // units
constexpr double Most_Passes = 1000;

}  // namespace

Setup_Row_List Plot_Rows() {
  return {
      Family<&M::Plot_Color>("General", "Plot_Color_<n>")
          .Plain("16711680")
          .Loads(0, 0)
          .Between(0, 16777215)
          .Saved(Save_Place::Plot_Colors)
          .Says(
              "Plot colours as blue, green and red bytes: travel, cut, deep cut, background, grid, "
              "cursor, cursor blinking; only the first is read."),
      Key<&M::Arc_Resolution>("General", "Arc_Resolution")
          .Star("180")
          .In("chords per unit of radius")
          .Between(3, 32767)
          .Saved(Save_Place::Plot_And_Arcs)
          .Says("Chords of an arc for each unit of its radius (in millimetres a 32nd of it)."),
      Key<&M::Arc_Max_Segments>("General", "Arc_Max_Segments")
          .Star("360")
          .Between(3, 32767)
          .Saved(Save_Place::Plot_And_Arcs)
          .Says("Most chords that an arc gets."),
      Key<&M::Arc_Radius_Ignore>("General", "Arc_Radius_Ignore")
          .Plain("0")
          .Between(0, 1)
          .Saved(Save_Place::Plot_And_Arcs)
          .Says("1 gives every arc the same number of chords, whatever its radius."),
      Key<&M::Plot_Bit_Radius_Enable>("General", "Plot_Bit_Radius_Enable")
          .Plain("1")
          .Between(0, 1)
          .Saved(Save_Place::Plot_And_Arcs)
          .Says("1 draws every line with the width of the drawn bit instead of the tool's."),
      Key<&M::Plot_FastDraw>("General", "Plot_FastDraw")
          .Plain("1")
          .Between(0, 1)
          .Saved(Save_Place::Plot_And_Arcs)
          .Says("1 draws the program at once; 0 lets the drawing be watched."),
      Key<&M::Plot_Auto_Loading>("General", "Plot_Auto_Loading")
          .Plain("1")
          .Between(0, 1)
          .Saved(Save_Place::Plot_And_Arcs)
          .Says("1 compiles and draws a program as soon as it is opened."),
      Key<&M::Plot_Bit_Radious>("General", "Plot_Bit_Radious")
          .Star("0.0001")
          .In("units")
          .Between(0, Longest)
          .Saved(Save_Place::Plot_And_Arcs)
          .Says("Width of the drawn bit where no tool gives one."),
      Key<&M::Plot_Show_Grid>("General", "Plot_Show_Grid")
          .Plain("1")
          .Between(0, 1)
          .Saved(Save_Place::Plot_And_Arcs)
          .Says("1 draws the table grid."),
      Key<&M::Plot_Centered>("General", "Plot_Centered")
          .Saved(Save_Place::Plot_And_Arcs)
          .Says("Puts the origin into the middle of the drawn table."),
      Key<&M::Parallel_Time_Constant>("General", "Parallel_Time_Constant")
          .Star("50")
          .In("microseconds")
          .Between(0, 1e6)
          .Saved(Save_Place::Time_Constant)
          .Says("Time that a half step costs by itself; taken off every delay. Measured by the "
                "timing "
                "window."),
      Family<&M::Default_Offset>("General", "Default_Offset_<n>")
          .Star("0")
          .In("units")
          .Saved(Save_Place::Offsets)
          .Says("Offset that the offset function offers for X, Y and Z."),
      Key<&M::Offset_Duplicate>("General", "Offset_Duplicate")
          .Saved(Save_Place::Offsets)
          .Says("The offset function adds a moved copy instead of moving the program."),
  };
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
          .Saved(Save_Place::DXF_Layer)
          .Says("Layer that is cut deep."),
      Key<&M::DXF_Sort_Layers>(section, "DXF_Sort_Layers")
          .Saved(Save_Place::DXF)
          .Says("Cuts layer by layer."),
      Key<&M::DXF_Sort_Lines>(section, "DXF_Sort_Lines")
          .Saved(Save_Place::DXF_Lines)
          .Says("Puts the lines in the order of a short way."),
      Key<&M::DXF_Ingore_Depth>(section, "DXF_Ingore_Depth")
          .Saved(Save_Place::DXF)
          .Says("Takes depths from the layer table instead of the drawing's Z."),
      Key<&M::DXF_Line_Tolerance>(section, "DXF_Line_Tolerance")
          .Plain("0.001")
          .In("units")
          .Between(0, Longest)
          .Saved(Save_Place::DXF)
          .Says("Ends closer than this belong to one contour."),
      Key<&M::DXF_Passes_to_Depth>(section, "DXF_Passes_to_Depth")
          .Plain("1")
          .Between(1, Most_Passes)
          .Saved(Save_Place::DXF)
          .Says("Passes until the depth is reached."),
      Key<&M::DXF_Passes_to_Depth_Deep_Cut_Only>(section, "DXF_Passes_to_Depth_Deep_Cut_Only")
          .Saved(Save_Place::DXF)
          .Says("Kept for other programs; the import does not look at it."),
      Key<&M::DXF_Pass_Type>(section, "DXF_Pass_Type")
          .Plain("1")
          .Saved(Save_Place::DXF)
          .Says("Kept for other programs; the import does not look at it."),
      Family<&M::DXF_Import_Offset>(section, "DXF_Import_Offset_<n>")
          .Plain("0")
          .In("units")
          .Saved(Save_Place::DXF)
          .Says("Offset in X, Y and Z that the import adds."),
      Family<&M::DXF_MultiDepth_Layer>(section, "DXF_MultiDepth_Layer_<n>")
          .Plain("None")
          .Saved(Save_Place::DXF)
          .Says("Layer of this row of the depth table."),
      Family<&M::DXF_MultiDepth_Passes>(section, "DXF_MultiDepth_Passes_<n>")
          .Plain("1")
          .Between(0, Most_Passes)
          .Saved(Save_Place::DXF)
          .Says("Passes of this layer."),
      Family<&M::DXF_MultiDepth_StartingDepth>(section, "DXF_MultiDepth_StartingDepth_<n>")
          .Computed(Tool_Level<0>)
          .In("units")
          .Saved(Save_Place::DXF)
          .Says("Z from which the passes of this layer start; the travel level until it is given."),
      Family<&M::DXF_MultiDepth_EndingDepth>(section, "DXF_MultiDepth_EndingDepth_<n>")
          .Computed(Tool_Level<1>)
          .In("units")
          .Saved(Save_Place::DXF)
          .Says("Z of the last pass of this layer; the normal cut level until it is given."),
  };
}

Setup_Row_List HPGL_Rows() {
  constexpr std::string_view section = "HPGL_Info";
  return {
      Key<&M::HPGL_Sort_Lines>(section, "HPGL_Sort_Lines")
          .Saved(Save_Place::HPGL)
          .Says("Puts the lines in the order of a short way."),
      Key<&M::HPGL_PenSize>(section, "HPGL_PenSize")
          .Star("0.03")
          .In("units")
          .Between(0, Longest)
          .Saved(Save_Place::HPGL_Pen)
          .Says("Width of the pen."),
      Key<&M::HPGL_Ingore_Depth>(section, "HPGL_Ingore_Depth")
          .Saved(Save_Place::HPGL)
          .Says("Cuts in passes from the travel level to the normal cut level."),
      Key<&M::HPGL_Passes_to_Depth>(section, "HPGL_Passes_to_Depth")
          .Plain("1")
          .Between(1, Most_Passes)
          .Saved(Save_Place::HPGL)
          .Says("Passes until the depth is reached."),
      Key<&M::HPGL_Multiple_Pen_Enable>(section, "HPGL_Multiple_Pen_Enable")
          .Saved(Save_Place::HPGL)
          .Says("Gives each pen its own depth and speeds."),
      Key<&M::HPGL_Multiple_Retool_Pause>(section, "HPGL_Multiple_Retool_Pause")
          .Saved(Save_Place::HPGL)
          .Says("Pauses at each change of the pen."),
      Family<&M::HPGL_Multiple_Pen_Cutting_IPM>(section, "HPGL_Multiple_Pen_Cutting_IPM_<n>")
          .In("IPM")
          .Saved(Save_Place::HPGL)
          .Says("Cutting speed of the pen; empty: the usual one."),
      Family<&M::HPGL_Multiple_Pen_Plunge_Depth>(section, "HPGL_Multiple_Pen_Plunge_Depth_<n>")
          .In("units")
          .Saved(Save_Place::HPGL)
          .Says("Depth of the pen; empty: the usual one."),
      Family<&M::HPGL_Multiple_Pen_Plunge_IPM>(section, "HPGL_Multiple_Pen_Plunge_IPM_<n>")
          .In("IPM")
          .Saved(Save_Place::HPGL)
          .Says("Plunge speed of the pen; empty: the usual one."),
  };
}

Setup_Row_List Gerber_Rows() {
  constexpr std::string_view section = "Gerber_Info";
  return {
      Key<&M::Gerber_Clean_Data>(section, "Gerber_Clean_Data")
          .Saved(Save_Place::Gerber)
          .Says("Removes doubled and overlapping lines."),
      Key<&M::Gerber_Isolation>(section, "Gerber_Isolation")
          .Saved(Save_Place::Gerber)
          .Says("Cuts around the copper instead of along it."),
      Key<&M::Gerber_Isolation_Width>(section, "Gerber_Isolation_Width")
          .Star("0.0001")
          .In("units")
          .Between(0, Longest)
          .Saved(Save_Place::Gerber)
          .Says("Distance of the isolation path from the copper."),
      Key<&M::Gerber_Isolation_Minimum_Poly_Width>(section, "Gerber_Isolation_Minimum_Poly_Width")
          .Star("0.009")
          .In("units")
          .Between(0, Longest)
          .Saved(Save_Place::Gerber)
          .Says("Lines no wider than this count as thin."),
      Key<&M::Gerber_Isolation_Sort_Lines>(section, "Gerber_Isolation_Sort_Lines")
          .Saved(Save_Place::Gerber)
          .Says("Puts the paths in the order of a short way."),
      Key<&M::Gerber_Isolation_Cleanup_Lines>(section, "Gerber_Isolation_Cleanup_Lines")
          .Saved(Save_Place::Gerber)
          .Says("Removes lines that another one covers."),
      Key<&M::Gerber_Isolation_SmallLines_Function>(section, "Gerber_Isolation_SmallLines_Function")
          .Saved(Save_Place::Gerber)
          .Says("Cuts thin lines along their middle; off: they are left out."),
      Key<&M::Gerber_Isolation_Multi_Cut_Lines>(section, "Gerber_Isolation_Multi_Cut_Lines")
          .Saved(Save_Place::Gerber)
          .Says("Isolates in several passes, each farther out."),
      Key<&M::Gerber_Isolation_Multi_Cut_Count>(section, "Gerber_Isolation_Multi_Cut_Count")
          .Star("2")
          .Between(1, Most_Passes)
          .Saved(Save_Place::Gerber)
          .Says("Number of isolation passes."),
      Key<&M::Gerber_Isolation_Multi_Cut_Gap>(section, "Gerber_Isolation_Multi_Cut_Gap")
          .Star("0.002")
          .In("units")
          .Between(0, Longest)
          .Saved(Save_Place::Gerber)
          .Says("Distance between two isolation passes."),
  };
}

}  // namespace

Setup_Row_List Drawing_Rows() {
  Setup_Row_List rows;
  for (const auto& part : {DXF_Rows(), HPGL_Rows(), Gerber_Rows()}) {
    rows.insert(rows.end(), part.begin(), part.end());
  }
  return rows;
}

namespace {

Setup_Row_List Insertion_Rows() {
  return {
      Key<&M::GC_IJ_Incremental>("G_CODE", "GC_IJ_Incremental")
          .Saved(Save_Place::Arc_Centers)
          .Says("Arc centres I and J count from the arc's start; off: from the origin."),
      Key<&M::Auto_Dwell_Insertion>("General", "Auto_Dwell_Insertion")
          .Saved(Save_Place::Dwell_And_Insertion)
          .Says("Importers insert a dwell after the spindle starts."),
      Key<&M::Gcode_DwellTime_Default>("General", "Gcode_DwellTime_Default")
          .Star("2")
          .In("s")
          .Between(0, 86400)
          .Saved(Save_Place::Dwell_And_Insertion)
          .Says("Length of that dwell."),
      Key<&M::Auto_Spindle_OnOff_Insertion>("General", "Auto_Spindle_OnOff_Insertion")
          .Saved(Save_Place::Dwell_And_Insertion)
          .Says("Importers switch the spindle on and off."),
      Key<&M::Auto_Flood_OnOff_Insertion>("General", "Auto_Flood_OnOff_Insertion")
          .Saved(Save_Place::Dwell_And_Insertion)
          .Says("Importers switch the flood coolant on and off."),
      Key<&M::Auto_Mist_OnOff_Insertion>("General", "Auto_Mist_OnOff_Insertion")
          .Saved(Save_Place::Dwell_And_Insertion)
          .Says("Importers switch the mist coolant on and off."),
      Key<&M::Plot_Dwell_Enable>("General", "Plot_Dwell_Enable")
          .Saved(Save_Place::Dwell_And_Insertion)
          .Says("The drawing waits at dwells."),
      Key<&M::Gcode_LineNodes>("General", "Gcode_LineNodes")
          .Saved(Save_Place::Dwell_And_Insertion)
          .Says("Marks the points at which the spindle changes."),
  };
}

Setup_Row_List Excellon_Rows() {
  constexpr std::string_view section = "Excellon";
  return {
      Key<&M::Excellon_Sort_Size>(section, "Excellon_Sort_Size")
          .Saved(Save_Place::Excellon)
          .Says("Kept for other programs; the import does not look at it."),
      Key<&M::Excellon_Sort_Location>(section, "Excellon_Sort_Location")
          .Saved(Save_Place::Excellon)
          .Says("Drills the holes in the order of a short way."),
      Key<&M::Excellon_Default_Drill_Size>(section, "Excellon_Default_Drill_Size")
          .Star("0.028")
          .In("units")
          .Between(0, Longest)
          .Saved(Save_Place::Excellon)
          .Says("Diameter of a drill whose size the file does not give."),
      Key<&M::Excellon_Integer_Format>(section, "Excellon_Integer_Format")
          .Star("2")
          .Between(1, 10)
          .Saved(Save_Place::Excellon)
          .Says("Digits in front of the point in numbers without one."),
      Key<&M::Excellon_Decimal_Format>(section, "Excellon_Decimal_Format")
          .Star("3")
          .Between(1, 10)
          .Saved(Save_Place::Excellon)
          .Says("Digits behind the point in numbers without one."),
      Key<&M::Excellon_Zero_Format>(section, "Excellon_Zero_Format")
          .Star("2")
          .Between(1, 2)
          .Saved(Save_Place::Excellon)
          .Says("Zeros that the file keeps: 1 leading, 2 trailing."),
  };
}

Setup_Row_List Scale_Rows() {
  constexpr std::string_view to_metric = "Factor of the conversion to millimetres.";
  constexpr std::string_view to_inch = "Factor of the conversion to inches.";
  return {
      Key<&M::Scale_Cnvrt_Metric_X>("General", "Scale_Cnvrt_Metric_X")
          .Star("25.4")
          .Saved(Save_Place::Scales)
          .Says(to_metric),
      Key<&M::Scale_Cnvrt_Metric_Y>("General", "Scale_Cnvrt_Metric_Y")
          .Star("25.4")
          .Saved(Save_Place::Scales)
          .Says(to_metric),
      Key<&M::Scale_Cnvrt_Metric_Z>("General", "Scale_Cnvrt_Metric_Z")
          .Star("25.4")
          .Saved(Save_Place::Scales)
          .Says(to_metric),
      Key<&M::Scale_Cnvrt_Imperial_X>("General", "Scale_Cnvrt_Imperial_X")
          .Star("0.039370078")
          .Saved(Save_Place::Scales)
          .Says(to_inch),
      Key<&M::Scale_Cnvrt_Imperial_Y>("General", "Scale_Cnvrt_Imperial_Y")
          .Star("0.039370078")
          .Saved(Save_Place::Scales)
          .Says(to_inch),
      Key<&M::Scale_Cnvrt_Imperial_Z>("General", "Scale_Cnvrt_Imperial_Z")
          .Star("0.039370078")
          .Saved(Save_Place::Scales)
          .Says(to_inch),
  };
}

}  // namespace

Setup_Row_List GCode_Rows() {
  Setup_Row_List rows;
  for (const auto& part : {Insertion_Rows(), Excellon_Rows(), Scale_Rows()}) {
    rows.insert(rows.end(), part.begin(), part.end());
  }
  return rows;
}

Setup_Row_List Bitmap_Rows() {
  constexpr std::string_view section = "Bitmap";
  return {
      Key<&M::BMAP_Material_Size_X>(section, "BMAP_Material_Size_X")
          .Star("7")
          .In("units")
          .Between(0, Longest)
          .Saved(Save_Place::Bitmap)
          .Says("Width that the picture takes."),
      Key<&M::BMAP_Material_Size_Y>(section, "BMAP_Material_Size_Y")
          .Star("7")
          .In("units")
          .Between(0, Longest)
          .Saved(Save_Place::Bitmap)
          .Says("Height that the picture takes."),
      Key<&M::BMAP_Material_Size_Z>(section, "BMAP_Material_Size_Z")
          .Star("1")
          .In("units")
          .Between(0, Longest)
          .Saved(Save_Place::Bitmap)
          .Says("Depth between black and white."),
      Key<&M::BMAP_Travel_Height>(section, "BMAP_Travel_Height")
          .Plain("1.5")
          .In("units")
          .Saved(Save_Place::Bitmap)
          .Says("Z of travel moves."),
      Key<&M::BMAP_Increment_X>(section, "BMAP_Increment_X")
          .Plain("0.125")
          .In("units")
          .Between(0, Longest)
          .Saved(Save_Place::Bitmap)
          .Says("Distance of two points in X."),
      Key<&M::BMAP_Increment_Y>(section, "BMAP_Increment_Y")
          .Plain("0.125")
          .In("units")
          .Between(0, Longest)
          .Saved(Save_Place::Bitmap)
          .Says("Distance of two points in Y."),
      Key<&M::BMAP_Rotate90>(section, "BMAP_Rotate90")
          .Plain("0")
          .Between(0, 1)
          .Saved(Save_Place::Bitmap)
          .Says("1 turns the picture by 90 degrees."),
      Key<&M::BMAP_Invert_Z>(section, "BMAP_Invert_Z")
          .Plain("0")
          .Between(0, 1)
          .Saved(Save_Place::Bitmap)
          .Says("1 swaps the depths of black and white."),
      Key<&M::BMAP_Sway_XY>(section, "BMAP_Sway_XY")
          .Plain("0")
          .Between(0, 1)
          .Saved(Save_Place::Bitmap)
          .Says("Axis of the long strokes: 0 Y, 1 X."),
      Key<&M::BMAP_Import_Offset_X>(section, "BMAP_Import_Offset_X")
          .Plain("0")
          .In("units")
          .Saved(Save_Place::Bitmap)
          .Says("Offset in X that the import adds."),
      Key<&M::BMAP_Import_Offset_Y>(section, "BMAP_Import_Offset_Y")
          .Plain("0")
          .In("units")
          .Saved(Save_Place::Bitmap)
          .Says("Offset in Y that the import adds."),
      Key<&M::BMAP_Import_Offset_Z>(section, "BMAP_Import_Offset_Z")
          .Plain("0")
          .In("units")
          .Saved(Save_Place::Bitmap)
          .Says("Offset in Z that the import adds."),
      Key<&M::BMAP_Passes_to_Depth>(section, "BMAP_Passes_to_Depth")
          .Star("1")
          .Between(1, Most_Passes)
          .Saved(Save_Place::Bitmap)
          .Then(After_Load::Send_To_Controller)
          .Says("Passes until the depth is reached."),
      Family<&M::Sound_Files>("Sounds", "Sound_Files_<n>")
          .Saved(Save_Place::Sounds)
          .Says("Sound of the event: play, step, pause, retooling, stop, E-stop, compile finished, "
                "motion finished; Disabled: none."),
  };
}

}  // namespace norvik

#include "core/computer_settings.h"

#include "core/setup.h"

#include <vector>

namespace norvik {

namespace {

Computer_Row Row(std::string_view key, std::string_view label, Setting_Kind kind,
                 std::string_view otherwise, After_Change then, std::string_view help) {
  Computer_Row row;
  row.Section = Computer_Section;
  row.Group = Computer_Page;
  row.Key = key;
  row.Label = label;
  row.Kind = kind;
  row.Default = otherwise;
  row.Needed_Then = then;
  row.Help = help;
  return row;
}

std::vector<Computer_Row> All_Rows() {
  using enum Setting_Kind;
  using enum After_Change;
  std::vector<Computer_Row> rows = {
      Row("Port_Access", "Access to the parallel port", Text, "Auto", Restart,
          "Which port the drive talks to. `Auto` takes the hardware where this computer grants the "
          "right and the simulated machine otherwise; the status bar says which."),
      Row("Card_Ports", "Ports of an add-on card", Text, "", Restart,
          "Address ranges of a card that the system does not list, such as `0xD010-0xD017`, parted "
          "by commas. Only ports of this computer's cards may be named."),
      Row("Serial_Device_<n>", "Serial port <n>", Text, "", Reopen_Drive,
          "Path of the device that the machine's port number stands for, or `simulated:dravon`, "
          "`simulated:pelmar`; empty: the port of that place in the system's list."),
      Row("Serial_Queue_Seconds", "Longest queue of a serial board", Number, "5", Reopen_Drive,
          "So much motion waits in the board; a pause takes about as long."),
      Row("Table_Directory", "Folder of compile tables and traces", Text, "", Restart,
          "Empty: the working folder. A folder that is missing is made."),
      Row("Error_Log_Limit_MB", "Largest error log", Whole_Number, "10", Restart,
          "A log that has grown to this becomes the older one beside the new."),
      Row("Trace_Limit_MB", "Largest trace", Whole_Number, "100", Restart,
          "A trace that has grown to this becomes the older one beside the new."),
      Row("Serial_Trace", "Trace of a serial board", Yes_No, "False", Reopen_Drive,
          "Writes each motion that goes to the board into `TestFile2.csv` of that folder."),
  };
  constexpr double megabytes_at_most = 100'000, hour = 3'600;
  rows[0].Choices = {{"Auto", "what there is"},
                     {"Direct", "the hardware"},
                     {"Simulated", "the simulated machine"}};
  rows[2].Is_Family = true;
  rows[2].Loaded = {1, 15};
  rows[3].Unit = "s";
  rows[3].Bounds = {0, hour};
  for (const std::size_t limit : {5U, 6U}) {
    rows[limit].Unit = "MB";
    rows[limit].Bounds = {1, megabytes_at_most};
  }
  return rows;
}

}  // namespace

std::span<const Computer_Row> Computer_Rows() {
  static const std::vector<Computer_Row> rows = All_Rows();
  return rows;
}

std::string Computer_Text(const Computer_Row& row, int index) {
  const std::string stored = ReadPointer(row.Section, Setting_Key(row, index));
  return stored.empty() ? std::string(row.Default) : stored;
}

bool Write_Computer_Text(const Computer_Row& row, int index, std::string_view text) {
  return WritePointer(row.Section, Setting_Key(row, index), text);
}

std::string Computer_Reference() {
  std::string page =
      "\n## " + std::string(Computer_Page) +
      "\n\nIn the pointer file `Norvik.Ini`, not in the machine file; the companion's "
      "`setup` does not see them.\n\n" +
      Setting_Table_Head();
  for (const Computer_Row& row : Computer_Rows()) {
    page += Setting_Table_Line(row, row.Default.empty() ? "empty" : std::string(row.Default));
  }
  return page;
}

}  // namespace norvik

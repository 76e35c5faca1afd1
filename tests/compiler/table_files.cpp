// The two tables as files: what is written, what is read, what happens when neither works.
#include "compiler/tables/fields.h"
#include "compiler/tables/tables_io.h"
#include "core/application.h"
#include "core/format.h"
#include "core/number_text.h"
#include "core/paths.h"
#include "support/full_disk.h"

#include <filesystem>
#include <fstream>
#include <functional>
#include <random>

#include <gmock/gmock.h>
#include <unistd.h>

namespace norvik {
namespace {

using testing::AllOf;
using testing::HasSubstr;

// A folder of its own for each test.
struct Table_Files : testing::Test {
  Table_Files() : Folder(testing::TempDir() + std::to_string(::getpid()) + "norvik_table_files") {
    std::filesystem::remove_all(Folder);
    std::filesystem::create_directories(Folder);
  }
  ~Table_Files() override { std::filesystem::remove_all(Folder); }
  std::string Path(const char* name) const { return Join_Path(Folder, name); }
  std::size_t Files() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(Folder), {}));
  }
  std::string Folder;
};

template <class Record>
Table<Record> One(const Record& record) {
  Table<Record> table;
  table.Rows.push_back(record);
  return table;
}

std::string Fault_Text(const std::function<void()>& body) {
  try {
    body();
  } catch (const Fault& fault) {
    return std::to_string(static_cast<int>(fault.Number)) + " " + fault.Description;
  }
  return "no fault";
}

LineArc Sample_Arc() {
  LineArc record;
  record.LineNumber = 12;
  record.RecordType = Record_Type::Arc;
  record.RecordFlag = 1;
  record.Start = {{1.5, -0.25, 0.0001}};
  record.End = {{2, 0.1 + 0.2, Nullable(), 360}};
  record.CenterI = 0.5;
  record.CenterJ = -1e-7;
  record.ArcDirection = 0;
  record.Out = {{2, 0, 1, 1, 1}};
  record.ToolNumber = 3;
  record.FeedMove = true;
  record.PauseTime = -1;
  record.CompMode = 2;
  record.Feed.Fill(12.7F);
  record.SourceText = "g2 x2, \"y\" (arc)";
  record.SpindleSpeed = 1e21;
  return record;
}

TEST_F(Table_Files, LineArc_Bytes) {
  Write_LineArc_Table(Path("records.csv"), One(Sample_Arc()));
  EXPECT_EQ(
      Read_Whole_File(Path("records.csv")),
      "12,\"2\",1,1.5,-0.25,0.0001,#NULL#,#NULL#,#NULL#,"
      "2,0.30000000000000004,#NULL#,360,#NULL#,#NULL#,0.5,-0.0000001,0,2,0,1,1,1,3,#TRUE#,-1,2,"
      "12.7,12.7,12.7,12.7,\"g2 x2, \"\"y\"\" (arc)\",1000000000000000000000,0,#NULL#,#NULL#\r\n");
}

TEST_F(Table_Files, Wire_Bytes) {
  Wire wire;
  wire.Step = -7;
  wire.End = {{-0.0, 1.0 / 3, 1e-300}};
  wire.Out = {{1, 1, 1, 1, -12}};
  wire.Dwell = 0.1F;
  wire.IPM_D = 16777216.0F;
  wire.IPM_S = 2.6000001F;
  wire.Aux_Wait = 1;
  Write_Wire_Table(Path("wires.csv"), One(wire));
  EXPECT_EQ(
      Read_Whole_File(Path("wires.csv")),
      "-7,0,#NULL#,#NULL#,#NULL#,#NULL#,#NULL#,#NULL#,0,0.3333333333333333,0." +
          std::string(299, '0') +
          "1,#NULL#,#NULL#,#NULL#,1,1,1,1,-12,#NULL#,#FALSE#,0.1,0,16777216,2.6000001,0,0,\"\","
          "#NULL#,0,#NULL#,1\r\n");
}

// Each field gets a value of its own, so that two fields that change places are seen.
struct Fill {
  int Next = 1;
  std::vector<std::string>* Texts;
  void operator()(std::int16_t& field) { field = static_cast<std::int16_t>(Next++ * -3); }
  void operator()(std::int32_t& field) { field = Next++ * 1'000'003; }
  void operator()(float& field) { field = static_cast<float>(Next++) + 0.123456F; }
  void operator()(Nullable& field) { field = Next++ / 7.0; }
  void operator()(bool& field) { field = true; }
  void operator()(Record_Type& field) { field = Record_Type::Line; }
  void operator()(std::optional<std::int16_t>& field) { field = static_cast<std::int16_t>(Next++); }
  void operator()(std::string_view& field) { field = "a \"b\", c\n\xE4"; }
};

template <class Record>
void Expect_Each_Field_Comes_Back(const std::string& path,
                                  void (*write)(const std::string&, const Table<Record>&),
                                  Table<Record> (*read)(const std::string&, std::size_t)) {
  Table<Record> table = One(Record());
  Record full;
  Fill fill{};
  For_Each_Field<Record>([&](const auto& row) { fill(row.Of(full)); });
  table.Rows.push_back(full);
  table.Rows.push_back(Record());
  for (const char sign : {'.', ','}) {
    Application.DecimalSeparator = sign;
    write(path, table);
    EXPECT_TRUE(read(path, No_Record_Limit).Rows == table.Rows);
  }
  Application.DecimalSeparator = '.';
  EXPECT_EQ(read(path, 2).Rows.size(), 2U);
}

TEST_F(Table_Files, Each_Field_Comes_Back_In_Both_Regions) {
  Expect_Each_Field_Comes_Back<LineArc>(Path("records"), Write_LineArc_Table, Read_LineArc_Table);
  Expect_Each_Field_Comes_Back<Wire>(Path("wires"), Write_Wire_Table, Read_Wire_Table);
}

// A wire record with its first fields and its text as given.
std::string Wire_Line(const std::string& step, const std::string& start_x, const std::string& moves,
                      const std::string& speed, const std::string& text, const char* end = "\r\n") {
  return step + ",1," + start_x +
         ",0,0,#NULL#,#NULL#,#NULL#,1,0,0,#NULL#,#NULL#,#NULL#,1,1,1,1,1,1," + moves +
         ",0,0,10,10," + speed + ",10," + text + ",#NULL#,0,#NULL#,#NULL#" + end;
}

TEST(Table_Reader, Takes_What_Other_Systems_Write) {
  struct Row {
    const char *Step, *Start, *Moves, *Speed, *Text, *End;
    std::int32_t Expected_Step;
    Nullable Expected_Start;
    bool Expected_Moves;
    float Expected_Speed;
    std::string Expected_Text;
  };
  const Row rows[] = {
      {"5", "1.25", "#TRUE#", "7.5", "\"G1\"", "\r\n", 5, 1.25, true, 7.5F, "G1"},
      {"5", ".5", "#FALSE#", "1E-05", "\"G1\"", "\n", 5, 0.5, false, 1e-5F, "G1"},
      {"5.5", "-.5", "-1", "1.5E+3", "\"\"", "\r", 6, -0.5, true, 1500, ""},
      {" 4.5", " 5. ", "True", "+3", " \"a\" ", " \r\n", 4, 5.0, true, 3, "a"},
      {"\"005.000\"", "\"1.500\"", "0", ".25", "plain text", "", 5, 1.5, false, 0.25F,
       "plain text"},
      {"1E3", "", "false", "1e-60", "#NULL#", "\n", 1000, Nullable(), false, 0, ""},
      {"-3", "\"\"", "1", "00012", "\"a\"\"b\"", "\n", -3, Nullable(), true, 12, "a\"b"},
      {"5", "123456789012345678901234567890", "#true#", "16777217", "\"a \"b\" c\"", "\r\n", 5,
       123456789012345678901234567890.0, true, 16777216, "a \"b\" c"},
      {"5", "0.1234567890123456789", "#TRUE#", "10", "\"a, \"\",b\"", "\r\n\r\n\n", 5,
       0.1234567890123456789, true, 10, "a, \",b"},
      {"5", "9007199254740993", "#TRUE#", "10", "\"two\r\nlines\"", "\r\n", 5, 9007199254740992.0,
       true, 10, "two\r\nlines"},
  };
  for (const Row& row : rows) {
    const std::string line =
        Wire_Line(row.Step, row.Start, row.Moves, row.Speed, row.Text, row.End);
    SCOPED_TRACE(line);
    const Table<Wire> table = Parse_Wire_Table("\r\n" + line, "wires");
    ASSERT_EQ(table.Rows.size(), 1U);
    const Wire& wire = table.Rows[0];
    EXPECT_EQ(wire.Step, row.Expected_Step);
    EXPECT_EQ(wire.Start[1], row.Expected_Start);
    EXPECT_EQ(wire.FeedMove, row.Expected_Moves);
    EXPECT_EQ(wire.IPM_R, row.Expected_Speed);
    EXPECT_EQ(wire.Block_Text, row.Expected_Text);
  }
}

TEST(Table_Reader, Counts_Values_And_Not_Lines) {
  std::string bytes =
      Wire_Line("1", "0", "#TRUE#", "10", "\"a,b\"") + Wire_Line("2", "1", "#TRUE#", "10", "\"c\"");
  const Table<Wire> expected = Parse_Wire_Table(bytes, "wires");
  // As the motion file leaves it: a line end after every 29th value.
  int value = 0;
  bool quoted = false;
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    if (bytes[at] == '"') quoted = !quoted;
    if (bytes[at] == '\r') bytes.replace(at, 2, ",");
    if (!quoted && bytes[at] == ',' && ++value % 29 == 0) bytes.replace(at, 1, "\r\n");
  }
  EXPECT_EQ(value, 64);
  EXPECT_TRUE(Parse_Wire_Table(bytes, "wires").Rows == expected.Rows);
}

TEST(Table_Reader, Says_What_Is_Wrong_And_Where) {
  const std::string good = Wire_Line("1", "0", "#TRUE#", "10", "\"a\"");
  struct Row {
    std::string Bytes;
    const char *Place, *Reason;
  };
  const Row rows[] = {
      {good + Wire_Line("x", "0", "0", "10", "\"\""), "line 2, field Step", "\"x\" is no number"},
      {good + good + Wire_Line("1", "1.2.3", "0", "10", "\"\""), "line 3, field Start_X", "1.2.3"},
      {Wire_Line("1", "inf", "0", "10", "\"\""), "field Start_X", "\"inf\" is no number"},
      {Wire_Line("1", "1e999", "0", "10", "\"\""), "field Start_X", "1e999"},
      {Wire_Line("1", "--4", "0", "10", "\"\""), "field Start_X", "--4"},
      {Wire_Line("1", "1", "perhaps", "10", "\"\""), "field FeedMove", "perhaps"},
      {Wire_Line("1", "1", "0", "#NULL#", "\"\""), "field IPM_R", "#NULL#"},
      {Wire_Line("3000000000", "1", "0", "1", "\"\""), "field Step", "32 bits"},
      {good.substr(0, good.find("#NULL#")), "field Start_A", "ends within a record"},
      {good + "7", "line 2, field Motion", "ends within a record"},
      {Wire_Line("1", "1", "0", "1", "\"open"), "field Block_Text", "no closing quote"},
      {std::string("\0\x01\xFF,,,", 6), "field Step", "is no number"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.Bytes);
    EXPECT_THAT(Fault_Text([&] { Parse_Wire_Table(row.Bytes, "wires.csv"); }),
                AllOf(HasSubstr("wires.csv, line "), HasSubstr(row.Place), HasSubstr(row.Reason)));
  }
}

// The reader sees a file through a window that moves on; what crosses its edge must not change.
TEST_F(Table_Files, Long_Files_Come_Back_Whole) {
  std::mt19937 random(5);
  auto texts = std::make_shared<std::vector<std::string>>();
  for (const std::size_t length : {0U, 3U, 700U, 70'000U, 2'000'000U}) {
    texts->push_back(std::string(length, 'x') + "\"");
  }
  Table<Wire> table;
  table.Texts = texts;
  for (int row = 0; row < 9000; ++row) {
    Wire wire;
    wire.Step = row;
    for (Nullable& place : wire.End)
      place = std::uniform_real_distribution<double>(-90, 90)(random);
    wire.IPM_R = static_cast<float>(random()) / 3;
    wire.Block_Text = (*texts)[row % 3000 == 2999 ? 3 + random() % 2 : random() % 3];
    table.Rows.push_back(wire);
  }
  Write_Wire_Table(Path("wires.csv"), table);
  EXPECT_TRUE(Read_Wire_Table(Path("wires.csv")).Rows == table.Rows);
}

TEST(Number_Text, Is_The_Shortest_That_Reads_Back) {
  std::mt19937_64 random(7);
  Recent_Texts<double> doubles;
  Recent_Texts<float> singles;
  const auto check = [](auto value, auto& recent) {
    if (!std::isfinite(value)) return;
    char text[Number_Text_Limit], again[Number_Text_Limit];
    const std::string printed(text, Print_Number(text, value));
    ASSERT_EQ(printed, Shortest_Text(value));
    ASSERT_EQ(printed, std::string(again, recent.Print(again, value)));
    auto back = value;
    ASSERT_TRUE(Parse_Number(printed.data(), printed.data() + printed.size(), back)) << printed;
    ASSERT_EQ(back, value);
  };
  for (int round = 0; round < 100'000; ++round) {
    const std::uint64_t bits = random();
    check(std::bit_cast<double>(bits), doubles);
    check(std::bit_cast<float>(static_cast<std::uint32_t>(bits)), singles);
    // Few decimals, where the short way through whole numbers is taken.
    const auto whole = static_cast<double>(static_cast<std::int64_t>(bits >> (11 + bits % 52)));
    const double decimals[] = {1, 10, 1e3, 1e4, 1e5, -1e4};
    const double value = whole / decimals[bits % 6];
    check(value, doubles);
    check(static_cast<float>(value), singles);
  }
}

TEST_F(Table_Files, A_Failed_Write_Leaves_The_Table_Of_Before) {
  const std::string path = Path("wires.csv");
  Wire wire;
  wire.Step = 1;
  Write_Wire_Table(path, One(wire));
  const std::string before = Read_Whole_File(path);

  Wire impossible;
  impossible.IPM_R = std::numeric_limits<float>::infinity();
  EXPECT_THAT(Fault_Text([&] { Write_Wire_Table(path, One(impossible)); }), HasSubstr("too large"));
  {
    Table_Writer<Wire> abandoned(path);
    abandoned.Add(Wire());
  }
  Table<Wire> many;
  for (int row = 0; row < 100; ++row) many.Rows.push_back(wire);
  std::string cut;
  {
    const Full_Disk disk;
    cut = Fault_Text([&] { Write_Wire_Table(path, many); });
  }
  EXPECT_THAT(cut, AllOf(HasSubstr("Cannot write"), HasSubstr("wires.csv")));

  EXPECT_EQ(Read_Whole_File(path), before);
  EXPECT_EQ(Files(), 1U) << "temporary files are left";
}

TEST_F(Table_Files, Failures_Say_What_To_Do) {
  std::filesystem::create_directory(Path("folder"));
  struct Row {
    std::string Path;
    const char* Writing;
    const char* Reading;
  };
  const Row rows[] = {
      {Path("none/wires.csv"), "53 Cannot write", "53 Cannot read"},
      {Path("folder"), "this is a folder", "this is a folder"},
      {"/dev/full", "61 Cannot write /dev/full: the disk is full", ""},
      {Path("missing.csv"), "no fault", "there is no such file"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.Path);
    if (*row.Reading != '\0') {
      EXPECT_THAT(Fault_Text([&] { Read_Wire_Table(row.Path); }), HasSubstr(row.Reading));
      EXPECT_THAT(Fault_Text([&] { Read_LineArc_Table(row.Path); }), HasSubstr(row.Reading));
    }
    EXPECT_THAT(Fault_Text([&] { Write_Wire_Table(row.Path, One(Wire())); }),
                HasSubstr(row.Writing));
  }
}

TEST(Record_List, Gives_Rows_Back_And_Guards_Its_Ends) {
  constexpr std::size_t piece = Record_List<Wire>::Piece_Rows;
  Record_List<Wire> list;
  for (std::size_t row = 0; row < 3 * piece; ++row) {
    Wire wire;
    wire.Step = static_cast<std::int32_t>(row);
    list.push_back(wire);
  }
  const Record_List<Wire> copy = list;
  list.Release_Before(2 * piece + 5);  // two whole pieces
  EXPECT_THROW(list[0], Fault);
  EXPECT_THROW(list[2 * piece - 1], Fault);
  EXPECT_EQ(list[2 * piece].Step, static_cast<std::int32_t>(2 * piece));
  list.Cut_To(2 * piece + 9);
  EXPECT_EQ(list.size(), 2 * piece + 9);
  EXPECT_EQ(list.back().Step, static_cast<std::int32_t>(2 * piece + 8));
  EXPECT_THROW(list[2 * piece + 9], Fault);
  list.push_back(copy.back());
  EXPECT_EQ(list.back(), copy[3 * piece - 1]);
  EXPECT_EQ((copy.end() - 1)->Step - copy.begin()[1].Step,
            static_cast<std::int32_t>(3 * piece - 2));
  EXPECT_THROW(Record_List<Wire>().back(), Fault);
}

}  // namespace
}  // namespace norvik

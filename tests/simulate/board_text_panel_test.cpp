// The simulated board on a plain terminal.
#include "simulate/process/board_text_panel.h"

#include "simulate/board/board.h"

#include <sstream>

#include <gmock/gmock.h>

namespace norvik {
namespace {

using testing::HasSubstr;
using testing::Not;

TEST(Board_Text_Panel, Shows_the_board_in_a_page_and_takes_keys) {
  Board_Line line;
  line.Board = Make_Board(Board_Generation::Pelmar_V5);
  Board_Panel_State panel{.Port = "/tmp/board", .Steps_Per_Unit = 400};
  const auto page = [&] { return Board_Panel_Text(line, panel); };
  EXPECT_THAT(page(), HasSubstr("SIMULATED BOARD"));
  EXPECT_THAT(page(), HasSubstr("/tmp/board"));
  EXPECT_THAT(page(), HasSubstr("0 of 3250"));
  line.Board.Outputs = 5;
  EXPECT_THAT(page(), HasSubstr("Outputs: spindle mist"));
  for (const char key : std::string("2ad")) Take_Board_Key(line, panel, key);
  EXPECT_TRUE(Low_Switch_On(line.Board, 2));
  EXPECT_EQ(line.Board.Aux, Input_State::On);
  EXPECT_THAT(page(), HasSubstr("UNPLUGGED"));
  for (const char key : std::string("2adx")) Take_Board_Key(line, panel, key);
  EXPECT_FALSE(Low_Switch_On(line.Board, 2));
  EXPECT_THAT(page(), Not(HasSubstr("UNPLUGGED")));
  Take_Board_Key(line, panel, 'p');
  EXPECT_THAT(page(), HasSubstr("TIME STANDS"));
  Take_Board_Key(line, panel, 'q');
  EXPECT_TRUE(panel.Quit);
  std::istringstream lines(page());
  int count = 0;
  for (std::string text; std::getline(lines, text); ++count) EXPECT_LE(text.size(), 81U) << text;
  EXPECT_LE(count, 24);
}

}  // namespace
}  // namespace norvik

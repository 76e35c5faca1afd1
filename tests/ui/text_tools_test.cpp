// The find bar, and the text tools in the window.
#include "core/operation.h"
#include "ui/program/text_search.h"
#include "ui_fixture.h"

#include <QCheckBox>
#include <QLabel>
#include <QScrollBar>
#include <QTextBlock>

namespace norvik {
namespace {

using testing::HasSubstr;

struct Text_Tools_Test : Ui_Test {
  QPlainTextEdit& Text() { return Find<QPlainTextEdit>("Text_GCode"); }
  void Type_In(const QString& field, const QString& text) {
    auto& edit = Find<QLineEdit>(field);
    edit.setFocus();
    edit.selectAll();
    QTest::keyClicks(&edit, text);
  }
  void Press(const QString& field, Qt::Key key) { QTest::keyClick(&Find(field), key); }
  // "line:selected" of the place that was found.
  std::string Found() {
    const QTextCursor cursor = Text().textCursor();
    return std::to_string(cursor.blockNumber() + 1) + ":" + cursor.selectedText().toStdString();
  }
  std::string Answer() { return Text_Of("Label_Find_Answer").toStdString(); }
};

TEST_F(Text_Tools_Test, FindGoesBothWaysAndRoundTheEnds) {
  Open("find.gc", "G1 X1\nG1 x10\nG1 X1 F5\n");
  Text().moveCursor(QTextCursor::Start);
  Choose("Menu_Edit_Find");
  Type_In("Text_Find", "X1");
  Press("Text_Find", Qt::Key_Return);
  EXPECT_EQ(Found(), "1:X1");
  Choose("Menu_Edit_Find_Next");
  EXPECT_EQ(Found(), "2:x1");
  Choose("Menu_Edit_Find_Previous");
  EXPECT_EQ(Found(), "1:X1");
  EXPECT_EQ(Answer(), "");
  Choose("Menu_Edit_Find_Previous");
  EXPECT_EQ(Found(), "3:X1");
  EXPECT_EQ(Answer(), "Went on from the end");
  Choose("Menu_Edit_Find_Next");
  EXPECT_EQ(Answer(), "Went on from the top");
  Find<QCheckBox>("Check_Whole_Word").setChecked(true);
  Choose("Menu_Edit_Find_Next");
  EXPECT_EQ(Found(), "3:X1") << "X10 is another word";
  Find<QCheckBox>("Check_Whole_Word").setChecked(false);
  Find<QCheckBox>("Check_Match_Case").setChecked(true);
  Choose("Menu_Edit_Find_Previous");
  EXPECT_EQ(Found(), "1:X1") << "x10 has another case";
  Type_In("Text_Find", "(");
  Press("Text_Find", Qt::Key_Return);
  EXPECT_EQ(Answer(), "Not found");
  Find<QCheckBox>("Check_Regex").setChecked(true);
  Press("Text_Find", Qt::Key_Return);
  EXPECT_THAT(Answer(), HasSubstr("No pattern: "));
}

TEST_F(Text_Tools_Test, ReplaceAllIsOneStepOfUndo) {
  const QString before = "G1 X1 Y1\nG1 X2 Y2\nG1 X3 Y3";
  Open("replace.gc", before.toStdString());
  Choose("Menu_Edit_Replace");
  Find<QCheckBox>("Check_Regex").setChecked(true);
  Type_In("Text_Find", "X(\\d) Y(\\d)");
  Type_In("Text_Replace", "Y\\1 X\\2");
  Click("Command_Replace_All");
  EXPECT_EQ(Text().toPlainText(), "G1 Y1 X1\nG1 Y2 X2\nG1 Y3 X3");
  EXPECT_EQ(Answer(), "3 replaced");
  EXPECT_TRUE(GCode_Program.Typed_Waits);
  Text().undo();
  EXPECT_EQ(Text().toPlainText(), before);

  // Only in the second line.
  QTextCursor line(Text().document()->findBlockByNumber(1));
  line.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
  Text().setTextCursor(line);
  Find<QCheckBox>("Check_In_Selection").setChecked(true);
  Click("Command_Replace_All");
  EXPECT_EQ(Text().toPlainText(), "G1 X1 Y1\nG1 Y2 X2\nG1 X3 Y3");

  Text().undo();
  Text().moveCursor(QTextCursor::Start);
  Press("Text_Find", Qt::Key_Return);
  Click("Command_Replace");
  EXPECT_EQ(Text().toPlainText(), "G1 Y1 X1\nG1 X2 Y2\nG1 X3 Y3");
  EXPECT_EQ(Found(), "2:X2 Y2");
}

TEST_F(Text_Tools_Test, EscBelongsToTheBarAndNothingIsSearchedInAMove) {
  Open("esc.gc", "G1 X1\n");
  Choose("Menu_Edit_Find");
  Type_In("Text_Find", "X1");
  EXPECT_TRUE(Find("Find_Bar").property("Takes_Escape").toBool());
  EXPECT_TRUE(Find("Find_Bar").isAncestorOf(&Find("Text_Find")));
  {
    const Operation_Scope run(Operation::Run);
    Press("Text_Find", Qt::Key_Return);
    EXPECT_EQ(Answer(), "Not while the machine moves");
  }
  Press("Text_Find", Qt::Key_Escape);
  EXPECT_FALSE(Find("Find_Bar").isVisible());
}

TEST_F(Text_Tools_Test, ATransformIsOneStepOfUndo) {
  Open("number.gc", "G1 X1\nG1 X2");
  Click("Command_Add_Seq");
  EXPECT_EQ(Text().toPlainText(), "N001 G1 X1\nN002 G1 X2\n");
  Text().undo();
  EXPECT_EQ(Text().toPlainText(), "G1 X1\nG1 X2");
  EXPECT_TRUE(GCode_Program.Typed_Waits) << "the old text is compiled when it is asked for";
  scripted.Input_Answers = {"2", "2"};
  Choose("Menu_Functions_Scale");
  EXPECT_THAT(Text().toPlainText().toStdString(), HasSubstr("G1 X"));
  EXPECT_THAT(Text().toPlainText().toStdString(), testing::Not(HasSubstr("G1 X1\n")));
}

TEST_F(Text_Tools_Test, TheCursorKeepsItsLineThroughATransformAndBack) {
  std::string program;
  for (int n = 0; n < 300; ++n) program += "G1 X1\n";
  Open("long.gc", program);
  Text().setTextCursor(QTextCursor(Text().document()->findBlockByNumber(200)));
  Text().centerCursor();
  const int top = Text().verticalScrollBar()->value();
  Click("Command_Add_Seq");
  for (const QKeySequence::StandardKey step : {QKeySequence::Undo, QKeySequence::Redo}) {
    QTest::keySequence(&Text(), QKeySequence(step));
    EXPECT_EQ(Text().toPlainText().startsWith("N001"), step == QKeySequence::Redo);
    EXPECT_EQ(Text().textCursor().blockNumber(), 200);
    EXPECT_EQ(Text().verticalScrollBar()->value(), top);
  }
  QTest::keyClicks(&Text(), "Y2");  // a change in the text has its own place
  Text().moveCursor(QTextCursor::Start);
  QTest::keySequence(&Text(), QKeySequence(QKeySequence::Undo));
  EXPECT_EQ(Text().textCursor().blockNumber(), 200);
}

TEST(Text_Search_Test, HitsWithoutACharacterAreNone) {
  const Text_Search search({"x*", false, false, true});
  EXPECT_FALSE(search.Next("abc", 0).has_value());
  EXPECT_EQ(search.Next("abxxc", 0)->Start, 2);
  int count = 0;
  EXPECT_EQ(search.Replaced("xaxx", 0, 4, "[\\0]", count), "[x]a[xx]");
  EXPECT_EQ(count, 2);
  EXPECT_FALSE(Text_Search({"", false, false, false}).Is_Valid());
}

}  // namespace
}  // namespace norvik

#include "ui/setup/option_page_view.h"

#include "app/main_form.h"
#include "app/options/options_form.h"
#include "core/setup_rows.h"
#include "ui/setup/color_sample.h"
#include "ui/setup/option_cell.h"
#include "ui/widgets/theme.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace norvik {

namespace {

QString Words_Of(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QLabel* Small_Words(const QString& text) {
  auto* label = new QLabel(text);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  QFont font = label->font();
  font.setPointSizeF(font.pointSizeF() * 0.9);
  label->setFont(font);
  label->setForegroundRole(QPalette::PlaceholderText);
  return label;
}

std::size_t Place_Of(const Setting_Row& row, int index) {
  for (std::size_t i = 0; i < Options_Form.Fields.size(); ++i) {
    const Option_Field& field = Options_Form.Fields[i];
    if (field.Row == &row && field.Index == index) return i;
  }
  return 0;
}

// Help of a whole row, with its range and factory value where the entries share one.
QString Help_Of(const Setting_Row& row, bool with_range) {
  QString text = Words_Of(row.Help);
  if (!with_range) return text;
  const auto [first, last] = Offered_Entries(row);
  const Option_Field& one = Options_Form.Fields[Place_Of(row, first)];
  const Option_Field& other = Options_Form.Fields[Place_Of(row, last)];
  // Factory values of their own stand beside each entry, at its way back.
  if (one.Default != other.Default) return text;
  return text + " " + QString::fromStdString(Option_Range(one));
}

QString Title_Of(const Setting_Row& row) {
  QString title = QString::fromStdString(Setting_Family_Label(row));
  if (title.isEmpty()) title = Words_Of(row.Group);
  title[0] = title[0].toUpper();
  return title;
}

QString Unit_Of(const Setting_Row& row) {
  return row.Unit.empty() ? QString() : " (" + Words_Of(row.Unit) + ")";
}

// Without the look of the name's underscore for a mnemonic.
QString Without_Mnemonic(QString text) {
  return text.replace('&', "&&");
}

QPushButton* Button(const QString& name, const QString& text, std::function<void()> clicked) {
  auto* button = new QPushButton(text);
  button->setObjectName(name);
  button->setMinimumHeight(Finger_Height() * 3 / 4);
  button->setAutoDefault(false);
  QObject::connect(button, &QPushButton::clicked, button, std::move(clicked));
  return button;
}

}  // namespace

Option_Page_View::Option_Page_View(const Option_Page& page) {
  setWidgetResizable(true);
  setFrameShape(QFrame::NoFrame);
  setAccessibleName(Words_Of(page.Name));
  auto* content = new QWidget;
  auto* rows = new QVBoxLayout(content);
  rows->setContentsMargins(Text_Height() / 2, 0, Text_Height() / 2, 0);
  rows->setSpacing(Text_Height() / 2);
  for (const std::string_view group : page.Groups) {
    if (page.Groups.size() > 1) {
      auto* title = new QLabel(Words_Of(group));
      title->setFont(Bold_Font(1.1));
      rows->addWidget(title);
    }
    Build_Group(*rows, group);
  }
  if (!page.List_Window.empty()) {
    rows->addWidget(Button("Command_List_Window", Words_Of(page.List_Title),
                           [name = std::string(page.List_Window)] { Main_Host.Show_Window(name); }),
                    0, Qt::AlignLeft);
  }
  rows->addStretch(1);
  setWidget(content);
}

Option_Cell* Option_Page_View::Cell_Of(const Setting_Row& row, int index, bool narrow) {
  Cells.push_back(new Option_Cell(Place_Of(row, index), narrow));
  return Cells.back();
}

void Option_Page_View::Build_Group(QVBoxLayout& rows, std::string_view group) {
  for (const Option_Block& block : Blocks_Of_Group(group)) {
    switch (block.Shape) {
      case Block_Shape::Line:
        rows.addWidget(Build_Line(*block.Rows.front()));
        break;
      case Block_Shape::Columns:
        rows.addWidget(Build_Columns(block));
        break;
      case Block_Shape::Entries:
        rows.addWidget(Build_Entries(block));
        if (Is_Color(*block.Rows.front())) {
          auto* sample = new Color_Sample;
          rows.addWidget(sample);
          Also.emplace_back([sample] { sample->update(); });
        }
    }
  }
  Build_Extras(rows, group);
}

QWidget* Option_Page_View::Build_Line(const Setting_Row& row) {
  auto* area = new QWidget;
  auto* grid = new QGridLayout(area);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setVerticalSpacing(0);
  const int index = Offered_Entries(row).First;
  Option_Cell* cell = Cell_Of(row, index, false);
  auto* label = new QLabel(Without_Mnemonic(QString::fromStdString(Setting_Label(row, index))));
  label->setWordWrap(true);
  label->setBuddy(cell->Control());
  label->setToolTip(cell->Control()->toolTip());
  grid->addWidget(label, 0, 0);
  grid->addWidget(Small_Words(Help_Of(row, true)), 1, 0);
  grid->addWidget(cell, 0, 1, 2, 1, Qt::AlignTop);
  auto* unit = new QLabel(Words_Of(row.Unit));
  unit->setWordWrap(true);
  unit->setForegroundRole(QPalette::PlaceholderText);
  unit->setFixedWidth(Text_Height() * 6);
  grid->addWidget(unit, 0, 2, 2, 1, Qt::AlignTop);
  grid->setColumnStretch(0, 3);
  grid->setColumnStretch(1, 2);
  if (row.Kind == Setting_Kind::Numeral_Format) {
    QLabel* example = Small_Words({});
    example->setObjectName("Example_" + cell->Control()->objectName());
    grid->addWidget(example, 2, 0, 1, 3);
    Also.emplace_back([example, place = cell->Field_Place()] {
      if (place >= Options_Form.Fields.size()) return;
      example->setText(QString::fromStdString(Option_Example(Options_Form.Fields[place])));
    });
    Also.back()();
  }
  return area;
}

// Few entries, as axes: a column for each.
QWidget* Option_Page_View::Build_Columns(const Option_Block& block) {
  auto* area = new QWidget;
  auto* grid = new QGridLayout(area);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setVerticalSpacing(Text_Height() / 6);
  const auto [first, last] = block.Entries;
  for (int index = first; index <= last; ++index) {
    auto* head = new QLabel(QString::fromStdString(Setting_Entry(*block.Rows.front(), index)));
    head->setFont(Bold_Font(1.0));
    grid->addWidget(head, 0, index - first + 1);
  }
  int line = 1;
  for (const Setting_Row* row : block.Rows) {
    auto* title = new QLabel(Without_Mnemonic(Title_Of(*row) + Unit_Of(*row)));
    title->setWordWrap(true);
    grid->addWidget(title, line, 0);
    for (int index = first; index <= last; ++index) {
      grid->addWidget(Cell_Of(*row, index, true), line, index - first + 1, Qt::AlignTop);
    }
    grid->addWidget(Small_Words(Help_Of(*row, true)), line + 1, 0, 1, last - first + 2);
    line += 2;
  }
  grid->setColumnStretch(0, 3);
  for (int index = first; index <= last; ++index) grid->setColumnStretch(index - first + 1, 2);
  return area;
}

// Many entries, as layers or pins: a line for each.
QWidget* Option_Page_View::Build_Entries(const Option_Block& block) {
  auto* area = new QWidget;
  auto* rows = new QVBoxLayout(area);
  rows->setContentsMargins(0, 0, 0, 0);
  for (const Setting_Row* row : block.Rows) {
    rows->addWidget(Small_Words(Title_Of(*row) + ": " + Help_Of(*row, true)));
  }
  auto* grid = new QGridLayout;
  grid->setVerticalSpacing(Text_Height() / 8);
  int column = 1;
  for (const Setting_Row* row : block.Rows) {
    auto* head = new QLabel(Without_Mnemonic(Title_Of(*row) + Unit_Of(*row)));
    head->setFont(Bold_Font(1.0));
    head->setWordWrap(true);
    grid->addWidget(head, 0, column);
    grid->setColumnStretch(column++, 2);
  }
  grid->setColumnStretch(0, 1);
  for (int index = block.Entries.First; index <= block.Entries.Last; ++index) {
    const int line = index - block.Entries.First + 1;
    auto* entry = new QLabel(QString::fromStdString(Setting_Entry(*block.Rows.front(), index)));
    grid->addWidget(entry, line, 0);
    column = 1;
    for (const Setting_Row* row : block.Rows) {
      grid->addWidget(Cell_Of(*row, index, true), line, column++);
    }
  }
  rows->addLayout(grid);
  return area;
}

QWidget* Option_Page_View::Build_Increments() {
  auto* area = new QWidget;
  auto* grid = new QGridLayout(area);
  grid->setContentsMargins(0, 0, 0, 0);
  static constexpr const char* names[] = {"Command_XInc", "Command_YInc"};
  static constexpr const char* letters[] = {"X", "Y"};
  static constexpr const char* signs[] = {"Double", "Halve"};
  for (int axis = 0; axis < 2; ++axis) {
    grid->addWidget(new QLabel(QString("Distance of two points, %1").arg(letters[axis])), axis, 0);
    for (int button = 0; button < 2; ++button) {
      QPushButton* made = Button(QString("%1_%2").arg(names[axis]).arg(button), signs[button],
                                 [axis, button] { Command_Increment_Click(axis, button); });
      made->setAccessibleName(QString("%1 the distance, %2").arg(signs[button], letters[axis]));
      grid->addWidget(made, axis, button + 1);
    }
  }
  grid->setColumnStretch(0, 1);
  return area;
}

QWidget* Option_Page_View::Build_Correction_Sets() {
  auto* area = new QWidget;
  auto* row = new QHBoxLayout(area);
  row->setContentsMargins(0, 0, 0, 0);
  QPushButton* off =
      Button("Command_As_The_System_Was", "As the system &was", [] { Choose_Corrections(false); });
  off->setToolTip("Switches all of them off");
  QPushButton* on = Button("Command_Recommended", "&Recommended", [] { Choose_Corrections(true); });
  on->setToolTip("Switches on those that suit every machine");
  row->addWidget(off);
  row->addWidget(on);
  row->addStretch(1);
  return area;
}

// What a page shows besides the settings themselves.
void Option_Page_View::Build_Extras(QVBoxLayout& rows, std::string_view group) {
  if (group == page::Pictures) rows.addWidget(Build_Increments());
  if (group == page::Corrections) rows.insertWidget(0, Build_Correction_Sets());
  if (group != page::Excellon) return;
  auto* format = new QLabel;
  format->setObjectName("Label_Excellon_Format");
  format->setFont(Readout_Font(1.1));
  rows.addWidget(format);
  Also.emplace_back(
      [format] { format->setText(QString::fromStdString(Display_Excellon_Format())); });
  Also.back()();
}

void Option_Page_View::Show_Fields() {
  for (Option_Cell* cell : Cells) cell->Show_Field();
  for (const auto& show : Also) show();
}

bool Option_Page_View::Go_To(std::string_view key) {
  for (Option_Cell* cell : Cells) {
    if (cell->Field_Place() >= Options_Form.Fields.size()) continue;
    if (Option_Key(Options_Form.Fields[cell->Field_Place()]) != key) continue;
    ensureWidgetVisible(cell, 0, Text_Height() * 4);
    cell->Control()->setFocus(Qt::OtherFocusReason);
    return true;
  }
  return false;
}

}  // namespace norvik

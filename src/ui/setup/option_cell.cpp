#include "ui/setup/option_cell.h"

#include "app/options/options_form.h"
#include "ui/widgets/theme.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QToolButton>

namespace norvik {

namespace {

QString Words_Of(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

Option_Field* Field_At(std::size_t place) {
  return place < Options_Form.Fields.size() ? &Options_Form.Fields[place] : nullptr;
}

QString Choice_Words(const Setting_Choice& choice) {
  return Words_Of(choice.Words.empty() ? choice.Value : choice.Words);
}

// What a screen reader says of the setting.
void Describe(QWidget& control, const Option_Field& field) {
  QString name = QString::fromStdString(Setting_Label(*field.Row, field.Index));
  if (!field.Row->Unit.empty()) name += ", " + Words_Of(field.Row->Unit);
  control.setAccessibleName(name);
  control.setAccessibleDescription(Words_Of(field.Row->Help));
  control.setObjectName(QString::fromStdString(Option_Control_Name(field)));
  const QString key =
      Words_Of(field.Row->Section) + "." + QString::fromStdString(Option_Key(field));
  control.setToolTip(name + "\n" + QString::fromStdString(Option_Range(field)) + "\n" + key);
}

}  // namespace

Option_Cell::Option_Cell(std::size_t place, bool narrow) : Place(place) {
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->setSpacing(0);
  auto* line = new QHBoxLayout;
  line->setSpacing(Text_Height() / 6);
  line->addWidget(Build_Control(narrow), 1);
  const QString name = Control()->objectName();
  Reset = new QToolButton;
  Reset->setObjectName("Reset_" + name);
  Reset->setIcon(Sign_Icon(Sign::Turn_Left, Colors().Warn));
  Reset->setAutoRaise(true);
  Reset->setAccessibleName("Factory value of " + Control()->accessibleName());
  QSizePolicy policy = Reset->sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  Reset->setSizePolicy(policy);
  connect(Reset, &QToolButton::clicked, this, [this] {
    if (Option_Field* changed = Field_At(Place)) Option_Reset(*changed);
  });
  line->addWidget(Reset);
  rows->addLayout(line);
  Words = new QLabel;
  Words->setObjectName("Error_" + name);
  Words->setTextFormat(Qt::PlainText);
  Words->setWordWrap(true);
  rows->addWidget(Words);
  Show_Field();
}

QWidget* Option_Cell::Control() const {
  if (Check != nullptr) return Check;
  if (Combo != nullptr) return Combo;
  return Edit;
}

QWidget* Option_Cell::Build_Control(bool narrow) {
  const Option_Field& field = *Field_At(Place);
  QWidget* built = nullptr;
  if (Is_Switch(*field.Row)) {
    built = Check = new QCheckBox;
    Check->setMinimumHeight(Finger_Height() * 2 / 3);
    connect(Check, &QCheckBox::clicked, this, [this](bool on) {
      if (Option_Field* changed = Field_At(Place))
        Option_Change(*changed, Switch_Text(*changed, on));
    });
  } else if (!field.Row->Choices.empty()) {
    built = Build_Choice();
  } else if (Is_Color(*field.Row)) {
    built = Build_Color();
  } else {
    built = Build_Text(narrow);
  }
  Describe(*Control(), field);
  Control()->setEnabled(field.Locked.empty());
  if (Swatch != nullptr) {
    Swatch->setObjectName("Command_" + Control()->objectName());
    Swatch->setAccessibleName("Choose " + Control()->accessibleName());
  }
  return built;
}

QWidget* Option_Cell::Build_Choice() {
  const Option_Field& field = *Field_At(Place);
  Combo = new QComboBox;
  Combo->setMinimumHeight(Finger_Height() * 2 / 3);
  Combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  Combo->setMinimumContentsLength(6);
  for (const Setting_Choice& choice : field.Row->Choices) {
    Combo->addItem(Choice_Words(choice), Words_Of(choice.Value));
  }
  connect(Combo, &QComboBox::activated, this, [this](int index) {
    Option_Field* changed = Field_At(Place);
    if (changed != nullptr)
      Option_Change(*changed, Combo->itemData(index).toString().toStdString());
  });
  return Combo;
}

QWidget* Option_Cell::Build_Text(bool narrow) {
  const Option_Field& field = *Field_At(Place);
  Edit = new QLineEdit;
  Edit->setMinimumHeight(Finger_Height() * 2 / 3);
  const bool is_number =
      field.Row->Kind != Setting_Kind::Text || Takes_Number_Or_Nothing(*field.Row);
  const int digits = is_number ? 8 : narrow ? 8 : 16;
  Edit->setMinimumWidth(Edit->fontMetrics().horizontalAdvance('0') * digits);
  connect(Edit, &QLineEdit::textEdited, this, [this](const QString& typed) {
    if (Option_Field* changed = Field_At(Place)) Option_Change(*changed, typed.toStdString());
  });
  return Edit;
}

QWidget* Option_Cell::Build_Color() {
  auto* both = new QWidget;
  auto* line = new QHBoxLayout(both);
  line->setContentsMargins(0, 0, 0, 0);
  line->addWidget(Build_Text(true), 1);
  Swatch = new QPushButton;
  Swatch->setFixedWidth(Finger_Height());
  Swatch->setMinimumHeight(Finger_Height() * 2 / 3);
  Swatch->setToolTip("Choose a colour");
  connect(Swatch, &QPushButton::clicked, this, &Option_Cell::Choose_Color);
  line->addWidget(Swatch);
  return both;
}

// Beside the program's work: nothing waits for it.
void Option_Cell::Choose_Color() {
  const Option_Field* field = Field_At(Place);
  if (field == nullptr) return;
  auto* dialog =
      new QColorDialog(QColor(QString::fromStdString(Color_Words(field->Text))), window());
  dialog->setObjectName("Color_Choice");
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setOption(QColorDialog::DontUseNativeDialog);
  dialog->setWindowTitle(Control()->accessibleName());
  connect(dialog, &QColorDialog::colorSelected, this, [this](const QColor& color) {
    if (Option_Field* changed = Field_At(Place))
      Option_Change(*changed, color.name().toStdString());
  });
  dialog->show();
}

void Option_Cell::Show_Text() {
  const Option_Field& field = *Field_At(Place);
  const bool is_color = Is_Color(*field.Row);
  const QString text = QString::fromStdString(is_color ? Color_Words(field.Text) : field.Text);
  // What is being typed stays as it is typed.
  const bool being_typed = Edit->hasFocus() && Edit->isModified() && Is_Edited(field);
  if (!being_typed && Edit->text() != text) Edit->setText(text);
  if (Swatch != nullptr) Set_Face(*Swatch, QColor(text), QColor());
}

void Option_Cell::Show_Field() {
  const Option_Field* field = Field_At(Place);
  if (field == nullptr) return;
  if (Check != nullptr) Check->setChecked(Switch_Is_On(*field));
  if (Combo != nullptr) {
    int index = -1;
    for (int i = 0; i < Combo->count(); ++i) {
      if (Same_Value(*field->Row, Combo->itemData(i).toString().toStdString(), field->Text))
        index = i;
    }
    if (index < 0) {  // what the file holds and no choice knows
      Combo->addItem(QString::fromStdString(field->Text), QString::fromStdString(field->Text));
      index = Combo->count() - 1;
    }
    if (Combo->currentIndex() != index) Combo->setCurrentIndex(index);
  }
  if (Edit != nullptr) Show_Text();
  Reset->setVisible(Is_Not_Default(*field) && field->Locked.empty());
  Reset->setToolTip("Not the factory value. Back to it: " +
                    QString::fromStdString(field->Default.empty() ? "empty" : field->Default));
  const std::string& said = field->Error.empty() ? field->Note : field->Error;
  Words->setText(QString::fromStdString(said.empty() ? field->Locked : said));
  Words->setVisible(!Words->text().isEmpty());
  QPalette palette = Words->palette();
  const QColor color = !field->Error.empty()  ? Colors().Stop
                       : !field->Note.empty() ? Colors().Warn
                                              : Colors().Muted;
  palette.setColor(QPalette::WindowText, color);
  Words->setPalette(palette);
}

}  // namespace norvik

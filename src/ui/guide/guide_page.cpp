#include "ui/guide/guide_page.h"

#include "core/axes.h"
#include "core/setup.h"
#include "ui/widgets/theme.h"

#include <QSignalBlocker>

namespace norvik {

Guide_Page_Widget::Guide_Page_Widget(Guide_Page page)
    : Its_Page(page), Its_Rows(new QVBoxLayout(this)) {
  Its_Rows->setContentsMargins(0, 0, 0, 0);
  Its_Rows->setSpacing(Text_Height() / 2);
  const auto& row = Guide_Row(page);
  auto* title = new QLabel(QString::fromUtf8(row.Title.data(), std::ssize(row.Title)));
  title->setFont(Bold_Font(1.3));
  Its_Rows->addWidget(title);
  auto* about = new QLabel(QString::fromUtf8(row.About.data(), std::ssize(row.About)));
  about->setWordWrap(true);
  Its_Rows->addWidget(about);
}

void Guide_Page_Widget::Show_Form() {
  for (const auto& copy : Copies) copy();
}

QPushButton* Guide_Page_Widget::Add_Button(QLayout& row, const char* name, const QString& text,
                                           const QString& tip, std::function<void()> clicked) {
  auto* button = new QPushButton(text);
  button->setObjectName(name);
  button->setToolTip(tip);
  button->setMinimumHeight(Finger_Height());
  connect(button, &QPushButton::clicked, this, std::move(clicked));
  row.addWidget(button);
  return button;
}

QLineEdit* Guide_Page_Widget::Add_Field(QLayout& row, const char* name, const QString& title,
                                        std::function<std::string&()> text) {
  auto* label = new QLabel(title);
  auto* field = new QLineEdit;
  field->setObjectName(name);
  field->setAccessibleName(QString(title).remove('&'));
  field->setMinimumHeight(Finger_Height() * 3 / 4);
  label->setBuddy(field);
  row.addWidget(label);
  row.addWidget(field);
  connect(field, &QLineEdit::textEdited, this,
          [text](const QString& typed) { text() = typed.toStdString(); });
  Also([field, text] {
    const QSignalBlocker quiet(field);
    const QString now = QString::fromStdString(text());
    if (field->text() != now) field->setText(now);
  });
  return field;
}

QLabel* Guide_Page_Widget::Add_Text(const char* name, std::function<QString()> text) {
  auto* label = new QLabel;
  label->setObjectName(name);
  label->setWordWrap(true);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  Its_Rows->addWidget(label);
  Also([label, text = std::move(text)] { label->setText(text()); });
  return label;
}

QComboBox* Guide_Page_Widget::Add_Axis_Choice(QLayout& row) {
  auto* label = new QLabel("A&xis");
  auto* axes = new QComboBox;
  axes->setObjectName("Combo_Axis");
  axes->setAccessibleName("Axis");
  axes->setMinimumHeight(Finger_Height() * 3 / 4);
  label->setBuddy(axes);
  for (int axis = 1; axis <= Axis_Count; ++axis) axes->addItem(QString(QChar(Axis_Letter(axis))));
  row.addWidget(label);
  row.addWidget(axes);
  connect(axes, &QComboBox::activated, this, [this](int index) {
    Guide_Form.Combo_Axis = index + 1;
    Guide_Form.Trial_Runs = false;
    Show_Form();
  });
  Also([axes] { axes->setCurrentIndex(Guide_Form.Combo_Axis - 1); });
  return axes;
}

QString Guide_Units() {
  return MachineSetup.UnitsofMeasurement == 1 ? "millimetres" : "inches";
}

Guide_Page_Widget* Make_Guide_Page(Guide_Page page) {
  if (page <= Guide_Page::Wiring) return Make_Machine_Page(page);
  if (page <= Guide_Page::Switches) return Make_Motion_Page(page);
  return Make_Last_Page(page);
}

}  // namespace norvik

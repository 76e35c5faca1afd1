#include "ui/simulated/axes_panel.h"

#include "core/axes.h"
#include "ui/simulated/travel_bar.h"
#include "ui/widgets/theme.h"

#include <QGridLayout>
#include <QLabel>

namespace norvik {

namespace {

QLabel* Figure() {
  auto* label = new QLabel;
  label->setFont(Readout_Font(1.1));
  label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  return label;
}

QString State_Words(const Simulated_Axis_View& view) {
  if (view.Stalled) return "STALLED";
  if (view.Sinking) return "SINKS";
  return view.Enabled ? "on" : "off";
}

}  // namespace

void Set_Text(QLabel& label, const QString& text) {
  if (label.text() != text) label.setText(text);
}

Axes_Panel::Axes_Panel(QWidget* parent) : QGroupBox("Where the carriages are", parent) {
  auto* grid = new QGridLayout(this);
  static constexpr const char* heads[] = {"Axis", "True position", "Apart",
                                          "Rate", "Motor",         "Travel"};
  for (int column = 0; column < 6; ++column) {
    auto* head = new QLabel(heads[column]);
    head->setForegroundRole(QPalette::PlaceholderText);
    head->setAlignment(column == 0 || column >= 4 ? Qt::AlignLeft : Qt::AlignRight);
    grid->addWidget(head, 0, column);
  }
  for (int axis = 1; axis <= 4; ++axis) {
    const QString name = QString(QChar(Axis_Letter(axis)));
    auto* title = new QLabel(name);
    title->setFont(Bold_Font(1.1));
    grid->addWidget(title, axis, 0);
    Axis_Row& row = Axes[static_cast<std::size_t>(axis)];
    row = {Figure(), Figure(), Figure(), new QLabel, new Travel_Bar};
    row.Position->setObjectName("Label_True_Position_" + name);
    row.Apart->setObjectName("Label_Steps_Apart_" + name);
    row.Apart->setToolTip("Steps between the carriage and what the program believes");
    row.Rate->setToolTip("Units per minute");
    row.State->setObjectName("Label_Motor_" + name);
    row.Travel->setObjectName("Travel_" + name);
    int column = 1;
    for (QWidget* part : {static_cast<QWidget*>(row.Position), static_cast<QWidget*>(row.Apart),
                          static_cast<QWidget*>(row.Rate), static_cast<QWidget*>(row.State),
                          static_cast<QWidget*>(row.Travel)}) {
      grid->addWidget(part, axis, column++);
    }
  }
  grid->setColumnStretch(5, 1);
  grid->setContentsMargins(6, 6, 6, 6);
  grid->setHorizontalSpacing(Text_Height() / 3);
  const QFontMetrics figures(Axes[1].Rate->font());
  grid->setColumnMinimumWidth(2, figures.horizontalAdvance("-00000"));
  grid->setColumnMinimumWidth(3, figures.horizontalAdvance("-000.0"));
  grid->setColumnMinimumWidth(4, QFontMetrics(font()).horizontalAdvance("STALLED"));
}

void Axes_Panel::Show_Axis(const Axis_Row& row, const Simulated_Axis_View& view) {
  Set_Text(*row.Position, QString::number(view.Position, 'f', 4));
  Set_Text(*row.Apart, QString::number(view.Steps_Apart));
  Set_Face(*row.Apart, QColor(), view.Steps_Apart != 0 ? Colors().Stop : QColor());
  Set_Text(*row.Rate, QString::number(view.Negative ? -view.Rate : view.Rate, 'f', 1));
  Set_Text(*row.State, State_Words(view));
  row.Travel->Show_View(view);
}

void Axes_Panel::Show_View(const Simulated_Machine_View& view) {
  for (int axis = 1; axis <= 4; ++axis) {
    Show_Axis(Axes[static_cast<std::size_t>(axis)], view.Axes[axis]);
  }
}

}  // namespace norvik

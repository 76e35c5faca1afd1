#include "ui/tools/sounds_window.h"

#include "tools/sound_list.h"
#include "ui/tools/window_buttons.h"
#include "ui/widgets/theme.h"

#include <QLabel>
#include <QListWidget>
#include <QMouseEvent>
#include <QVBoxLayout>

namespace norvik {

Sounds_Window::Sounds_Window(QWidget* parent) : QWidget(parent) {
  setObjectName("Event_Sounds");
  setWindowTitle("Event sounds");
  auto* rows = new QVBoxLayout(this);
  auto* hint = new QLabel(
      "Double click chooses a sound file, the right mouse button plays it. A missing file is "
      "silent.");
  hint->setWordWrap(true);
  rows->addWidget(hint);
  List = new QListWidget;
  List->setObjectName("List_Sounds");
  List->setFont(Readout_Font(1.0));
  List->setTextElideMode(Qt::ElideMiddle);
  List->setMinimumSize(Text_Height() * 30, Text_Height() * 12);
  List->viewport()->installEventFilter(this);
  connect(List, &QListWidget::currentRowChanged, this, [](int row) {
    if (row >= 0) Event_Sounds.Selected = row;
  });
  connect(List, &QListWidget::itemDoubleClicked, this,
          [this](QListWidgetItem* item) { List_Sounds_DblClick(List->row(item)); });
  rows->addWidget(List, 1);
  auto* foot = new QHBoxLayout;
  Add_Window_Button(*foot, "Command_Choose", "Choose...", "Choose the sound file of this event",
                    [] { List_Sounds_DblClick(Event_Sounds.Selected); });
  Add_Window_Button(*foot, "Command_Play", "Play", "Play the sound of this event",
                    Event_Sounds_Command_Play_Click);
  Add_Window_Button(*foot, "Command_Delete", "Silence", "No sound at this event",
                    Event_Sounds_Command_Delete_Click);
  Add_Window_Button(*foot, "Command_Own_Sounds", "Take Norvik's sounds",
                    "Nine short sounds, one for each event", Take_Own_Sounds);
  foot->addStretch(1);
  Add_Window_Button(*foot, "Command_OK", "OK", "Close", [this] { Close_Frame_Of(*this); });
  rows->addLayout(foot);
  resize(Text_Height() * 46, Text_Height() * 22);

  Listener.emplace(Event_Sounds_Host.Form_Changed, [this] { Show_Form(); });
  Event_Sounds = {};
  Display_Sounds();
}

void Sounds_Window::Show_Form() {
  const int chosen = Event_Sounds.Selected;
  List->clear();
  for (int slot = 0; slot < Sound_Slots; ++slot) {
    const auto& line = Event_Sounds.List_Sounds[static_cast<std::size_t>(slot)];
    auto* item = new QListWidgetItem(QString::fromStdString(line), List);
    item->setToolTip(item->text());
    if (!Sound_Mark(slot).empty()) item->setForeground(Colors().Stop);
  }
  List->setCurrentRow(chosen);
}

bool Sounds_Window::eventFilter(QObject* watched, QEvent* event) {
  if (watched == List->viewport() && event->type() == QEvent::MouseButtonPress) {
    const auto* press = static_cast<QMouseEvent*>(event);
    const int row = List->row(List->itemAt(press->position().toPoint()));
    if (row >= 0) List_Sounds_MouseDown(row, press->button() == Qt::RightButton);
  }
  return QWidget::eventFilter(watched, event);
}

}  // namespace norvik

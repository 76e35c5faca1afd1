#include "platform/desktop/desktop_platform.h"

#include "platform/keys/key_codes.h"
#include "platform/platform.h"

#include <array>
#include <chrono>
#include <map>
#include <memory>

#include <QAbstractButton>
#include <QApplication>
#include <QDateTime>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QTextDocument>
#include <QTimer>
#include <QWidget>

namespace norvik {

namespace {

using Clock = std::chrono::steady_clock;

struct Key_State {
  std::array<bool, 256> Down{};
  std::array<bool, 256> Went_Down{};  // since the last question
  bool Escape_Taken = false;          // the last press of ESC went to a box
};

struct Desktop_State {
  Key_State Keys;
  std::map<Timer_Id, std::unique_ptr<QTimer>> Timers;
  Timer_Id Next_Timer = 1;
  bool Pointer_Busy = false;
  std::function<void()> Before_Box = [] {};
};

Desktop_State Desktop;

bool Something_Takes_Escape() {
  if (QApplication::activeModalWidget() || QApplication::activePopupWidget()) return true;
  for (const QWidget* widget = QApplication::focusWidget(); widget; widget = widget->parentWidget())
    if (widget->property("Takes_Escape").toBool()) return true;
  return false;
}

// Sees every key event of the program before any window does. A window system tells a program of
// its own keys only, so a key counts while any window of the program has the focus.
class Key_Watch : public QObject {
 public:
  using QObject::QObject;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    switch (event->type()) {
      case QEvent::KeyPress:
      case QEvent::ShortcutOverride:
        Note(static_cast<QKeyEvent*>(event), true);
        break;
      case QEvent::KeyRelease:
        Note(static_cast<QKeyEvent*>(event), false);
        break;
      case QEvent::ApplicationStateChange:
        // Releases that happen while another program has the focus never arrive.
        if (QGuiApplication::applicationState() != Qt::ApplicationActive) Desktop.Keys.Down = {};
        break;
      default:
        break;
    }
    return QObject::eventFilter(watched, event);
  }

 private:
  static void Note(const QKeyEvent* event, bool down) {
    const int code = Virtual_Key_Code(*event);
    if (code <= 0 || code > 255) return;
    const auto place = static_cast<std::size_t>(code);
    if (down && code == key::Escape && !Desktop.Keys.Down[place])
      Desktop.Keys.Escape_Taken = Something_Takes_Escape();
    Desktop.Keys.Down[place] = down;
    if (down) Desktop.Keys.Went_Down[place] = true;
  }
};

bool Key_Is_Down(int code) {
  if (code < 0 || code > 255) return false;
  const auto place = static_cast<std::size_t>(code);
  const bool answer = Desktop.Keys.Down[place] || Desktop.Keys.Went_Down[place];
  Desktop.Keys.Went_Down[place] = false;
  return answer;
}

// The toolkit's timers and not a Timer_Queue: an idle program waits in the toolkit's event loop,
// which has to wake up for them.
Timer_Id Start_Desktop_Timer(int interval_ms, std::function<void()> handler) {
  const Timer_Id id = Desktop.Next_Timer++;
  auto timer = std::make_unique<QTimer>();
  QObject::connect(timer.get(), &QTimer::timeout, timer.get(), std::move(handler));
  timer->start(interval_ms);
  Desktop.Timers[id] = std::move(timer);
  return id;
}

void Stop_Desktop_Timer(Timer_Id id) {
  const auto found = Desktop.Timers.find(id);
  if (found == Desktop.Timers.end()) return;
  found->second->stop();
  // The handler may be stopping its own timer.
  found->second.release()->deleteLater();
  Desktop.Timers.erase(found);
}

Box_Answer Show_Box(const std::string& title, const std::string& text, Box_Buttons buttons) {
  Desktop.Before_Box();
  QMessageBox::StandardButtons wanted = QMessageBox::Ok;
  if (buttons == Box_Buttons::Yes_No) wanted = QMessageBox::Yes | QMessageBox::No;
  const bool careful = buttons == Box_Buttons::Yes_No_Cancel_Careful;
  if (buttons == Box_Buttons::Yes_No_Cancel || careful) {
    wanted = QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
  }
  const bool continues = buttons == Box_Buttons::Continue_Cancel;
  const bool ok_cancel = buttons == Box_Buttons::Ok_Cancel || continues;
  if (ok_cancel) wanted = QMessageBox::Ok | QMessageBox::Cancel;
  QMessageBox box(buttons == Box_Buttons::Ok ? QMessageBox::Information : QMessageBox::Question,
                  QString::fromStdString(title.empty() ? "Norvik" : title),
                  QString::fromStdString(text), wanted, QApplication::activeWindow());
  box.setTextFormat(Qt::PlainText);
  if (continues) box.button(QMessageBox::Ok)->setText("&Continue");
  // Enter pressed by habit does the less.
  if (ok_cancel) box.setDefaultButton(QMessageBox::Cancel);
  if (buttons == Box_Buttons::Yes_No || careful) box.setDefaultButton(QMessageBox::No);
  switch (box.exec()) {
    case QMessageBox::Yes:
      return Box_Answer::Yes;
    case QMessageBox::No:
      return Box_Answer::No;
    case QMessageBox::Ok:
      return Box_Answer::Ok;
    default:
      return buttons == Box_Buttons::Ok ? Box_Answer::Ok : Box_Answer::Cancel;
  }
}

std::optional<std::string> Ask_Text(const std::string& title, const std::string& prompt,
                                    const std::string& initial) {
  Desktop.Before_Box();
  bool accepted = false;
  const QString answer = QInputDialog::getText(
      QApplication::activeWindow(), QString::fromStdString(title), QString::fromStdString(prompt),
      QLineEdit::Normal, QString::fromStdString(initial), &accepted);
  if (!accepted) return std::nullopt;
  return answer.toStdString();
}

// "All Files (*.*)|*.*|G Code Files (*.gc)|*.gc" in the toolkit's form. Patterns match both cases,
// and "*.*" means every file.
QStringList Toolkit_Filters(const std::string& filter) {
  const QStringList parts = QString::fromStdString(filter).split('|');
  QStringList entries;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    QString name = parts[i];
    name.remove(QRegularExpression("\\s*\\([^)]*\\)"));
    QStringList patterns;
    for (QString pattern : parts[i + 1].split(';', Qt::SkipEmptyParts)) {
      if (pattern == "*.*") pattern = "*";
      patterns << pattern;
      if (pattern.toUpper() != pattern) patterns << pattern.toUpper();
      if (pattern.toLower() != pattern) patterns << pattern.toLower();
    }
    patterns.removeDuplicates();
    entries << name + " (" + patterns.join(' ') + ")";
  }
  return entries;
}

QString Dialog_Folder(const File_Dialog& ask) {
  const QString folder = QString::fromStdString(ask.Directory);
  return folder.isEmpty() || !QDir(folder).exists() ? QDir::homePath() : folder;
}

// The desktop's own dialog takes no further button, the toolkit's does.
std::optional<std::string> Ask_Open_With_Options(const File_Dialog& ask) {
  const QStringList filters = Toolkit_Filters(ask.Filter);
  QFileDialog dialog(QApplication::activeWindow(), QString::fromStdString(ask.Title),
                     Dialog_Folder(ask), filters.join(";;"));
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.setFileMode(QFileDialog::ExistingFile);
  dialog.selectNameFilter(filters.value(ask.Filter_Index - 1));
  dialog.selectFile(QString::fromStdString(ask.File_Name));
  bool options = false;
  if (auto* buttons = dialog.findChild<QDialogButtonBox*>()) {
    QPushButton* button = buttons->addButton("O&ptions...", QDialogButtonBox::ActionRole);
    button->setObjectName("Command_Options");
    button->setToolTip("How the import goes about it; then choose the import again");
    QObject::connect(button, &QPushButton::clicked, &dialog, [&] {
      options = true;
      dialog.reject();
    });
  }
  const bool accepted = dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty();
  if (options) ask.On_Options();
  if (!accepted) return std::nullopt;
  return dialog.selectedFiles().front().toStdString();
}

std::optional<std::string> Ask_Open(const File_Dialog& ask) {
  Desktop.Before_Box();
  if (ask.On_Options) return Ask_Open_With_Options(ask);
  const QStringList filters = Toolkit_Filters(ask.Filter);
  QString selected = filters.value(ask.Filter_Index - 1);
  const QString path = QFileDialog::getOpenFileName(
      QApplication::activeWindow(), QString::fromStdString(ask.Title),
      QDir(Dialog_Folder(ask)).filePath(QString::fromStdString(ask.File_Name)), filters.join(";;"),
      &selected);
  if (path.isEmpty()) return std::nullopt;
  return path.toStdString();
}

std::optional<std::string> Ask_Save(const File_Dialog& ask) {
  Desktop.Before_Box();
  QFileDialog dialog(QApplication::activeWindow(), QString::fromStdString(ask.Title),
                     Dialog_Folder(ask), Toolkit_Filters(ask.Filter).join(";;"));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setDefaultSuffix(QString::fromStdString(ask.Default_Extension));
  dialog.selectFile(QString::fromStdString(ask.File_Name));
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  return dialog.selectedFiles().front().toStdString();
}

bool Print_On_Paper(const std::vector<std::string>& lines) {
  Desktop.Before_Box();
  QPrinter printer;
  QPrintDialog dialog(&printer, QApplication::activeWindow());
  if (dialog.exec() != QDialog::Accepted) return false;
  QString text;
  for (const std::string& line : lines) text += QString::fromStdString(line) + '\n';
  QTextDocument document;
  QFont font("monospace", 9);
  font.setStyleHint(QFont::Monospace);
  document.setDefaultFont(font);
  document.setPlainText(text);
  document.print(&printer);
  return true;
}

void Show_Pointer(Mouse_Pointer pointer) {
  const bool busy = pointer == Mouse_Pointer::Busy;
  if (busy == Desktop.Pointer_Busy) return;
  Desktop.Pointer_Busy = busy;
  // The windows stay usable during long work: Pause, Stop and the E-stop act on a yield.
  if (busy) {
    QApplication::setOverrideCursor(Qt::BusyCursor);
  } else {
    QApplication::restoreOverrideCursor();
  }
}

Calendar_Time Desktop_Local_Time() {
  const QDateTime now = QDateTime::currentDateTime();
  return {now.date().year(), now.date().month(),  now.date().day(),
          now.time().hour(), now.time().minute(), now.time().second()};
}

Screen_Area Desktop_Screen() {
  const QRect area = QGuiApplication::primaryScreen()->availableGeometry();
  return {area.left(), area.top(), area.width(), area.height()};
}

}  // namespace

bool Escape_Went_To_A_Box() {
  return Desktop.Keys.Escape_Taken;
}

void Install_Desktop_Platform(std::function<void()> before_box) {
  Desktop.Before_Box = std::move(before_box);
  qApp->installEventFilter(new Key_Watch(qApp));

  Platform.Do_Events = [] { QCoreApplication::processEvents(QEventLoop::AllEvents); };
  // The toolkit reads input on a thread of its own and does not tell whether some waits. A yield
  // too many costs a little time; a Stop button that is not heard would cost more.
  Platform.Input_Pending = [] { return true; };
  Platform.Start_Timer = Start_Desktop_Timer;
  Platform.Stop_Timer = Stop_Desktop_Timer;
  Platform.End_Process = [] { QCoreApplication::exit(0); };
  Platform.Message_Box = Show_Box;
  Platform.Input_Box = Ask_Text;
  Platform.Open_File_Dialog = Ask_Open;
  Platform.Save_File_Dialog = Ask_Save;
  Platform.Beep = [] { QApplication::beep(); };
  Platform.Set_Mouse_Pointer = Show_Pointer;
  Platform.Print_Lines = Print_On_Paper;
  Platform.Screen = Desktop_Screen;
  Platform.Key_Down = Key_Is_Down;
  Platform.Day_Clock = [] { return QTime::currentTime().msecsSinceStartOfDay() / 1000.0; };
  Platform.Monotonic_Clock = [] {
    return std::int64_t{
        std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now().time_since_epoch())
            .count()};
  };
  Platform.Local_Time = Desktop_Local_Time;
}

}  // namespace norvik

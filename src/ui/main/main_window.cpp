#include "ui/main/main_window.h"

#include "app/bitmap_form.h"
#include "app/forms.h"
#include "app/gcode_file.h"
#include "app/gcode_form.h"
#include "app/import_menu.h"
#include "app/machine_menu.h"
#include "app/main_form.h"
#include "app/motion_menu.h"
#include "app/openers.h"
#include "app/options/options_form.h"
#include "app/setup_apply.h"
#include "app/shutdown.h"
#include "app/startup.h"
#include "app/transform_menu.h"
#include "compiler/state/compile_host.h"
#include "control/manual/home.h"
#include "control/manual/jog_guard.h"
#include "control/motion/motion.h"
#include "control/run/cnc_controller.h"
#include "control/safety/safety.h"
#include "control/state/cnc_controls_form.h"
#include "control/state/control_texts.h"
#include "control/state/controller_state.h"
#include "core/application.h"
#include "core/corrections.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/recent_files.h"
#include "core/window_memory.h"
#include "import/pipeline/pipeline.h"
#include "plot/nist_plot.h"
#include "plot/view.h"
#include "tools/motion_analyzer.h"
#include "ui/guide/guide_window.h"
#include "ui/guide/welcome_window.h"
#include "ui/imports/bitmap_import_window.h"
#include "ui/imports/dxf_layers_window.h"
#include "ui/imports/gerber_layers_window.h"
#include "ui/machine/controls_window.h"
#include "ui/machine/jog_key_window.h"
#include "ui/machine/port_io_window.h"
#include "ui/main/about_box.h"
#include "ui/main/error_log_window.h"
#include "ui/main/manual_window.h"
#include "ui/main/safety_bar.h"
#include "ui/plot/plot_window.h"
#include "ui/program/find_bar.h"
#include "ui/program/gcode_window.h"
#include "ui/program/progress_window.h"
#include "ui/setup/setup_windows.h"
#include "ui/tools/tool_windows.h"
#include "ui/widgets/theme.h"

#include <algorithm>

#include <QApplication>
#include <QCloseEvent>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QMimeData>
#include <QStatusBar>
#include <QTimer>

namespace norvik {

namespace {

struct Menu_Row {
  const char* Menu;
  const char* Name;
  const char* Text;
  const char* Tip;
  void (*Chosen)();
  QKeySequence Keys = {};
};

// The key only ever stops: a second press of it, in a fright, enables nothing.
void EStop_By_Key() {
  if (!Machine.EStop_Flag) Command_EStop_Click();
}

// Entries whose work stands in the rooms of the logic; without one, in this window.
const std::vector<Menu_Row>& Menu_Rows() {
  static const std::vector<Menu_Row> rows = {
      {"&File", "Menu_File_New", "&New", "Begin a new program", Menu_File_New, QKeySequence::New},
      {"&File", "Menu_File_Open", "&Open...", "Open a program", Menu_File_Open, QKeySequence::Open},
      {"&File", "Menu_File_Save", "&Save", "Save the program into its file", Menu_File_Save,
       QKeySequence::Save},
      {"&File", "Menu_File_Save_As", "Save &as...", "Save the program into another file",
       Menu_File_Save_As, QKeySequence::SaveAs},
      {"&File", "Menu_File_Open_Motion", "Open &motion...",
       "Run a compiled program without its text", Menu_File_Open_Motion},
      {"&File", "Menu_File_Save_Motion", "Sa&ve motion...",
       "Save the compiled program, to be run without its text", Menu_File_Save_Motion},
      {"&File", "Menu_File_Print", "&Print...", "Print the program", Print_Data,
       QKeySequence::Print},
      {"&Import", "Menu_Import_DXF", "&DXF...", "Make a program of a drawing", Menu_Import_DXF},
      {"&Import", "Menu_Import_HPGL", "&HPGL...", "Make a program of a plot file",
       Menu_Import_HPGL},
      {"&Import", "Menu_Import_Excellon", "&Excellon...", "Make a program of a drill file",
       Menu_Import_Excellon},
      {"&Import", "Menu_Import_Gerber", "&Gerber...", "Make a program of a board's artwork",
       Menu_Import_Gerber},
      {"&Import", "Menu_Import_Bitmap", "&Bitmap...", "Make a carving of a picture",
       Menu_Import_Bitmap},
      {"&Setup", "Menu_Machine_Create_New_Machine", "&Create new machine...",
       "Save the present parameters as another machine", Menu_Machine_Create_New_Machine},
      {"&Setup", "Menu_Machine_Load_Machine_Setup", "&Load machine setup...",
       "Work with another machine", Menu_Machine_Load_Machine_Setup},
      {"&Setup", "Menu_Machine_Restore", "&Restore factory settings...",
       "Every parameter to its factory value", Command_Parameter_Reset_Click},
      {"Fu&nctions", "Menu_Functions_Scale", "&Scale...", "Multiply the coordinates",
       Menu_Functions_Scale},
      {"Fu&nctions", "Menu_Functions_Offset", "&Offset...",
       "Move the program, or append a moved copy", Menu_Functions_Offset},
      {"Fu&nctions", "Menu_Functions_Conv_Absolute", "Convert to &absolute",
       "Positions instead of incremental moves", Menu_Functions_Conv_Absolute},
      {"Fu&nctions", "Menu_Functions_Conv_Incremental", "Convert to &incremental",
       "Incremental moves instead of positions", Menu_Functions_Conv_Incremental},
      {"Fu&nctions", "Menu_Functions_OptimizeToolPath", "&File sort",
       "Reads the program; orders nothing", Menu_Functions_OptimizeToolPath},
      {"&Export", "Menu_File_Export_DXF", "&DXF...", "The cutting moves as lines of a drawing",
       Menu_File_Export_DXF},
      {"&Export", "Menu_File_Export_HPGL", "&HPGL...", "The moves in the plane as a plot file",
       Menu_File_Export_HPGL},
      {"&View", "Menu_View_Refresh", "&Refresh plot", "Draw the program again", Plot_Refresh,
       QKeySequence(Qt::CTRL | Qt::Key_R)},
      {"&View", "Menu_View_Zoom_Table", "Zoom to &table", "Show the whole table", Zoom_Table},
      {"&View", "Menu_View_Zoom_All", "Zoom to &program", "Show the whole program", Zoom_All},
      {"&View", "Menu_View_Reset_Positions", "Reset &window positions",
       "Put the windows inside this one back to their default places", nullptr},
      // What starts a motion takes two keys at once, what ends one takes a single key.
      {"&Machine", "Menu_Machine_Play", "&Play", "Run the program from the step shown on the panel",
       Command_CNC_Play_Click, QKeySequence(Qt::CTRL | Qt::Key_F9)},
      {"&Machine", "Menu_Machine_Step", "S&tep", "Run one step", Command_CNC_Step_Click,
       QKeySequence(Qt::CTRL | Qt::Key_F10)},
      {"&Machine", "Menu_Machine_Pause", "P&ause", "Stop after the running step",
       Command_CNC_Pause_Click, QKeySequence(Qt::Key_F9)},
      {"&Machine", "Menu_Machine_Stop", "&Stop",
       "End the run with the running move (ESC does the same)", Command_CNC_Stop_Click,
       QKeySequence(Qt::Key_F8)},
      {"&Machine", "Menu_Machine_EStop", "&E-stop",
       "Stop all motion at once and disable the motors", EStop_By_Key, QKeySequence(Qt::Key_F12)},
      {"&Machine", "Menu_Machine_Home", "&Home", "Go to the home position", Command_Home_Click,
       QKeySequence(Qt::CTRL | Qt::Key_F11)},
      {"&Help", "Menu_Help_Error_Log", "&Error log",
       "What the program has noted: refusals, faults, stops", nullptr},
      {"&Help", "Menu_Help_Manual", "&Manual", "The page about the window in front", nullptr,
       QKeySequence::HelpContents},
  };
  return rows;
}

struct Form_Row {
  Form_Id Form;
  const char* Menu_Text;
  std::function<QWidget*()> Make;
};

const std::vector<Form_Row>& Form_Rows() {
  static const std::vector<Form_Row> rows = {
      {Form_Id::Plot, "&Plot (F4)", [] { return new Plot_Window; }},
      {Form_Id::GCode, "&G-code (F5)", [] { return new GCode_Window; }},
      {Form_Id::CNC_Controls, "&CNC controls (F6)", [] { return new Controls_Window; }},
      {Form_Id::JogKey, "&Jog by keys", [] { return new JogKey_Window; }},
      {Form_Id::Port_IO, "Port &I/O", [] { return new Port_IO_Window; }},
      {Form_Id::DXF_Layer_List, "DXF &layers", [] { return new DXF_Layers_Window; }},
  };
  return rows;
}

QString Name_Of(Form_Id form) {
  const std::string_view name = Form_Name(form);
  return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
}

// Absent for windows without a memory.
std::optional<Form_Id> Form_Of(const QString& name) {
  for (const Form_Id form : All_Forms) {
    if (name == Name_Of(form)) return form;
  }
  return std::nullopt;
}

// Where a tool window stands when it is neither maximised nor minimised. The toolkit keeps this
// place of the main window only.
constexpr const char* Normal_Place = "normal_place";

QRect Normal_Geometry(const QWidget& window) {
  if (!window.isMaximized() && !window.isMinimized()) return window.geometry();
  const QRect kept = window.property(Normal_Place).toRect();
  if (kept.isValid()) return kept;
  return window.normalGeometry().isValid() ? window.normalGeometry() : window.geometry();
}

Window_Place Place_Of(const QWidget& window) {
  const QRect frame = Normal_Geometry(window);
  Window_Place place{frame.top(), frame.left(), frame.height(), frame.width(), Window_Normal};
  if (window.isMinimized()) place.WindowState = Window_Minimized;
  if (window.isMaximized()) place.WindowState = Window_Maximized;
  return place;
}

}  // namespace

Main_Frame::Main_Frame() : Area(new QMdiArea) {
  setObjectName("Main");
  setAcceptDrops(true);
  setCentralWidget(Area);
  Area->setBackground(palette().brush(QPalette::AlternateBase));
  Area->setActivationOrder(QMdiArea::ActivationHistoryOrder);
  // A maximised plot does not make the panel maximised that is opened after it.
  Area->setOption(QMdiArea::DontMaximizeSubWindowOnActivation);
  setMinimumSize(640, 480);
  for (const Form_Row& row : Form_Rows()) {
    Tool_Windows[Name_Of(row.Form)] = {row.Menu_Text, row.Make, nullptr};
  }
  Build_Menus();
  Build_Status_Bar();
  Progress = new Progress_Window(this);
  Connect_Hosts();
  setWindowTitle(QString::fromStdString(Main_Form.Caption));
}

Main_Frame::~Main_Frame() {
  Close_Tool_Windows();
  Main_Host = {};
  Options_Host = {};
  Compile_Host.Show_Progress = [](const std::string&) {};
  Compile_Host.Show_Motion_Analyzer = [] {};
  Recent_Host.List_Changed = [] {};
  Messages_Host.Panel_Changed = [](int) {};
  Bitmap_Host = {};
  Import_Host = {};
  Guide_Host = {};
}

// --- Menus and status bar ------------------------------------------------------------------------

void Main_Frame::Build_Menus() {
  std::map<QString, QMenu*> menus;
  for (const char* title : {"&File", "&Edit", "&Import", "Fu&nctions", "&View", "&Setup",
                            "&Machine", "&Window", "&Help"}) {
    menus[title] = menuBar()->addMenu(title);
    menus[title]->setToolTipsVisible(true);
  }
  auto* exports = new QMenu("&Export", this);
  exports->setToolTipsVisible(true);
  menus["&Export"] = exports;
  for (const Menu_Row& row : Menu_Rows()) {
    QAction* action = menus[row.Menu]->addAction(row.Text);
    if (row.Chosen != nullptr) {
      connect(action, &QAction::triggered, this, row.Chosen);
    } else if (QLatin1String(row.Name) == "Menu_Help_Error_Log") {
      connect(action, &QAction::triggered, this, [this] { Show_Tool_Window("Error_Log"); });
    } else if (QLatin1String(row.Name) == "Menu_Help_Manual") {
      connect(action, &QAction::triggered, this, &Main_Frame::Show_Manual);
    } else {
      connect(action, &QAction::triggered, this, &Main_Frame::Reset_Places);
    }
    action->setObjectName(row.Name);
    action->setShortcut(row.Keys);
    action->setAutoRepeat(false);
    QString tip = row.Tip;
    if (!row.Keys.isEmpty()) tip += " (" + row.Keys.toString(QKeySequence::NativeText) + ")";
    action->setToolTip(tip);
  }
  const auto program = [this]() -> GCode_Window* {
    QMdiSubWindow* frame = Tool_Windows["GCode"].Frame;
    return frame != nullptr ? static_cast<GCode_Window*>(frame->widget()) : nullptr;
  };
  QMenu* edit = menus["&Edit"];
  edit->addAction("&Undo", QKeySequence::Undo, this, [program] {
    if (GCode_Window* window = program()) window->Undo();
  });
  const auto find = [&](const char* name, const char* text, const QKeySequence& keys,
                        void (Find_Bar::*command)()) {
    edit->addAction(text, keys, this,
                    [this, program, command] {
                      Show_Tool_Window("GCode");
                      if (GCode_Window* window = program()) (window->Finder().*command)();
                    })
        ->setObjectName(name);
  };
  find("Menu_Edit_Find", "&Find...", QKeySequence::Find, &Find_Bar::Show_Find);
  find("Menu_Edit_Replace", "&Replace...", QKeySequence(Qt::CTRL | Qt::Key_H),
       &Find_Bar::Show_Replace);
  find("Menu_Edit_Find_Next", "Find &next", QKeySequence(Qt::Key_F3), &Find_Bar::Find_Next);
  find("Menu_Edit_Find_Previous", "Find &previous", QKeySequence(Qt::SHIFT | Qt::Key_F3),
       &Find_Bar::Find_Previous);
  edit->addAction("&Compile", QKeySequence(Qt::CTRL | Qt::Key_B), this, Command_Update_Click);

  QMenu* file = menus["&File"];
  file->addMenu(exports);
  Recent_Menu = file->addMenu("&Recent files");
  Build_Recent_Menu(*Recent_Menu);
  file->addSeparator();
  file->addAction("E&xit", QKeySequence::Quit, this, &QWidget::close)
      ->setObjectName("Menu_File_Exit");
  menus["&Help"]
      ->addAction("&About Norvik", this, [this] { Show_About_Box(this); })
      ->setObjectName("Menu_Help_About");
  Window_Menu = menus["&Window"];
  for (const auto& [name, window] : Tool_Windows) {
    const QString window_name = name;
    Window_Menu
        ->addAction(window.Menu_Text, this, [this, window_name] { Show_Tool_Window(window_name); })
        ->setObjectName("Menu_Window_" + name);
  }
  Build_List_Entries();
  Build_Setup_Entries(*menus["&Setup"]);
  Build_Guide_Entry(*menus["&Machine"]);
  Bar = new Safety_Bar;
  menuBar()->setCornerWidget(Bar, Qt::TopRightCorner);
  Tool_Windows["Manual"] = {"&Manual", [] { return new Manual_Window; }, nullptr, true};
  Tool_Windows["Error_Log"] = {"&Error log", [] { return new Error_Log_Window; }, nullptr, true};
}

void Main_Frame::Build_List_Entries() {
  Window_Menu->addSeparator();
  for (const List_Window_Row& row : List_Window_Rows()) {
    const QString name = row.Name;
    Tool_Windows[name] = {row.Menu_Text, row.Make, nullptr, true};
    QAction* action =
        Window_Menu->addAction(row.Menu_Text, this, [this, name] { Show_Tool_Window(name); });
    action->setObjectName("Menu_Window_" + name);
    connect(Window_Menu, &QMenu::aboutToShow, action,
            [action, offered = row.Offered] { action->setVisible(offered()); });
  }
}

void Main_Frame::Build_Setup_Entries(QMenu& menu) {
  menu.addSeparator();
  for (const Setup_Window_Row& row : Setup_Window_Rows()) {
    const QString name = row.Name;
    Tool_Windows[name] = {row.Menu_Text, row.Make, nullptr, true};
    QAction* action = menu.addAction(row.Menu_Text, this, [this, name, refused = row.Refused] {
      if (*refused == '\0' || Stopped_For(refused)) Show_Tool_Window(name);
    });
    action->setObjectName("Menu_Machine_" + name);
    action->setToolTip(row.Tip);
  }
  QAction* axes = menu.addAction("&Axes...", this, [] { Show_Option("Axes"); });
  axes->setObjectName("Menu_Machine_Axes");
  axes->setToolTip("Steps, travels, speeds and switches of each axis");
  QAction* action = menu.addAction("&Diagnostics", this, Menu_Machine_Diagnostics);
  action->setObjectName("Menu_Machine_Diagnostics");
  action->setToolTip("The numbers of the last move");
}

void Main_Frame::Build_Guide_Entry(QMenu& menu) {
  Tool_Windows["Guide"] = {"Set up a machine", [] { return new Guide_Window; }, nullptr, false};
  // A guide that is under way goes on where it was.
  const auto open = [this] {
    if (!Tool_Window_Is_Open("Guide")) Open_Guide();
    Show_Tool_Window("Guide");
  };
  Tool_Windows["Welcome"] = {"Welcome", [open] { return new Welcome_Window(open); }, nullptr, true};
  menu.addSeparator();
  QAction* action = menu.addAction("Set &up a machine...", this, open);
  action->setObjectName("Menu_Machine_Guide");
  action->setToolTip("From a bare machine to its first cut, page by page");
  Guide_Host.Bring_To_Front = [this] { Show_Tool_Window("Guide"); };
  Guide_Host.Open_Window = [this](const std::string& name) {
    Show_Tool_Window(QString::fromStdString(name));
  };
}

void Main_Frame::Build_Recent_Menu(QMenu& menu) {
  menu.clear();
  int slot = 0;
  for (const std::string& text : Recent_Menu_Texts()) {
    ++slot;
    if (text.empty()) continue;
    QAction* action = menu.addAction(QString::fromStdString(text).replace('&', "&&"), this,
                                     [slot] { Menu_File_File_Click(slot); });
    action->setObjectName(QString("Menu_File_File%1").arg(slot));
  }
  menu.setEnabled(!menu.isEmpty());
}

void Main_Frame::Build_Status_Bar() {
  for (std::size_t panel = 0; panel < Panels.size(); ++panel) {
    auto* label = new QLabel;
    label->setObjectName(QString("Panel_%1").arg(panel + 1));
    label->setTextFormat(Qt::PlainText);
    label->setMinimumWidth(Text_Height() * 4);
    // The first tells what happens; it has the room that the others leave.
    if (panel == 0) label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    statusBar()->addWidget(label, panel == 0 ? 1 : 0);
    Panels[panel] = label;
  }
  Banner = new QLabel;
  Banner->setObjectName("Label_Banner");
  Banner->setFont(Bold_Font(1.0));
  Banner->setMargin(Text_Height() / 5);
  Set_Face(*Banner, Colors().Warn, Theme_Is_Dark() ? Qt::black : Qt::white);
  Banner->hide();
  statusBar()->addPermanentWidget(Banner);
  Build_Corrections_Mark();
}

// How many corrections are on; windows, files and the companion change them.
void Main_Frame::Build_Corrections_Mark() {
  constexpr int look_ms = 1000;
  auto* mark = new QLabel;
  mark->setObjectName("Label_Corrections");
  statusBar()->insertPermanentWidget(0, mark);
  const auto refresh = [mark] {
    const int on = Corrections_On();
    mark->setVisible(on > 0);
    if (on == 0) return;
    mark->setText(on == 1 ? "1 correction on" : QString("%1 corrections on").arg(on));
    mark->setToolTip(QString::fromStdString(Corrections_Line()));
  };
  auto* timer = new QTimer(mark);
  connect(timer, &QTimer::timeout, mark, refresh);
  timer->start(look_ms);
  refresh();
}

void Main_Frame::Set_Banner(const QString& text) {
  Banner_Text = text;
  Banner->setVisible(!text.isEmpty());
  Show_Banner();
}

void Main_Frame::Add_Notice(const QString& text, const QString& tip) {
  auto* notice = new QLabel(text);
  notice->setObjectName("Label_Notice");
  notice->setToolTip(tip);
  statusBar()->insertPermanentWidget(0, notice);
}

void Main_Frame::Show_Banner() {
  const bool narrow = width() < Text_Height() * 60;
  Banner->setText(narrow ? Banner_Text.section(" - ", 0, 0) : Banner_Text);
}

void Main_Frame::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  Show_Banner();
}

// --- Hooks ---------------------------------------------------------------------------------------

void Main_Frame::Connect_Hosts() {
  Main_Host.Caption_Changed = [this] { setWindowTitle(QString::fromStdString(Main_Form.Caption)); };
  Main_Host.Place_Main = [this](const Window_Place& place) {
    setGeometry(place.Left, place.Top, place.Width, place.Height);
    if (place.WindowState == Window_Maximized) {
      showMaximized();
    } else {
      show();
    }
    Tell_Area();
  };
  Main_Host.Show_Form = [this](Form_Id form) { Show_Tool_Window(Name_Of(form)); };
  Main_Host.Focus_Form = Main_Host.Show_Form;
  Main_Host.Unload_Form = [this](Form_Id form) {
    QMdiSubWindow*& frame = Tool_Windows[Name_Of(form)].Frame;
    if (frame == nullptr) return;
    Keep_Place(Name_Of(form), *frame);
    delete frame;
    frame = nullptr;
  };
  Main_Host.View_Of = [this](Form_Id form) {
    if (form == Form_Id::Main) return Form_View{Place_Of(*this), isVisible(), true};
    const QMdiSubWindow* frame = Tool_Windows[Name_Of(form)].Frame;
    if (frame == nullptr) return Form_View();
    return Form_View{Place_Of(*frame), frame->isVisible(), true};
  };
  Main_Host.Unload_Other_Windows = [this] { Close_Tool_Windows(); };
  Main_Host.Show_Window = [this](const std::string& name) {
    for (const char* menu : {"Menu_Machine_", "Menu_Window_"}) {
      if (auto* entry = findChild<QAction*>(menu + QString::fromStdString(name))) entry->trigger();
    }
  };
  Main_Host.Show_Setting = [](const std::string& key_or_page) { Show_Option(key_or_page); };
  Options_Host.Show = [this] { Show_Tool_Window("Options"); };
  Main_Host.Unload_Setup_Windows = [this] { Close_Setup_Windows(); };
  Compile_Host.Show_Progress = [this](const std::string& caption) {
    Progress->Show_Progress(QString::fromStdString(caption));
  };
  Compile_Host.Show_Motion_Analyzer = [this] {
    const bool opens = !Tool_Window_Is_Open("frmMotionAnalyzer");
    Show_Tool_Window("frmMotionAnalyzer");
    if (!opens) frmMotionAnalyzer_Load();  // one that opens loads by itself
  };
  Import_Host.Show_DXF_Layers = [this] {
    Show_Tool_Window("DXF_Import_Layers");
    static_cast<DXF_Layers_Window*>(Tool_Windows["DXF_Import_Layers"].Frame->widget())->Show_Form();
  };
  Connect_Gerber_Layers(*this);
  Connect_Bitmap_Import(*this);
  Recent_Host.List_Changed = [this] { Build_Recent_Menu(*Recent_Menu); };
  Messages_Host.Panel_Changed = [this](int panel) {
    if (panel < 1 || panel > 4) return;
    QLabel* label = Panels[static_cast<std::size_t>(panel - 1)];
    const QString text = QString::fromStdString(Messages.Panel[panel]);
    label->setText(text);
    label->setToolTip(text);
  };
}

// --- Tool windows --------------------------------------------------------------------------------

void Main_Frame::Add_Tool_Window(const QString& name, const QString& menu_text,
                                 std::function<QWidget*()> make) {
  Tool_Windows[name] = {menu_text, std::move(make), nullptr};
  Window_Menu->addAction(menu_text, this, [this, name] { Show_Tool_Window(name); })
      ->setObjectName("Menu_Window_" + name);
}

void Main_Frame::Show_Tool_Window(const QString& name) {
  const auto found = Tool_Windows.find(name);
  if (found == Tool_Windows.end()) return;
  QMdiSubWindow*& frame = found->second.Frame;
  if (frame != nullptr && found->second.Opens_Anew && !frame->isVisible()) Retire(frame);
  if (frame == nullptr) {
    QWidget* window = found->second.Make();
    frame = Area->addSubWindow(window);
    frame->setAttribute(Qt::WA_DeleteOnClose, false);
    frame->installEventFilter(this);
    Restore_Place(name, *frame);
    if (auto* program = qobject_cast<GCode_Window*>(window)) {
      connect(program, &GCode_Window::File_Dropped, this, &Main_Frame::Open_Path);
    }
  }
  if (frame->isMinimized()) frame->showNormal();
  frame->widget()->show();
  frame->show();
  Area->setActiveSubWindow(frame);
}

// At the place that the window and the control in front are about.
void Main_Frame::Show_Manual() {
  if (Anything_Moves()) return Tell(control_text::Not_While_Moving, 5);
  const QMdiSubWindow* active = Area->activeSubWindow();
  const QString window = active == nullptr ? QString() : active->widget()->objectName();
  const QWidget* control = QApplication::focusWidget();
  const Manual_Place place =
      Manual_Place_Of(window, control == nullptr ? QString() : control->objectName());
  Show_Tool_Window("Manual");
  static_cast<Manual_Window*>(Tool_Windows["Manual"].Frame->widget())
      ->Open_Page(place.Page, place.Text);
}

void Main_Frame::Start_Is_Over() {
  Started = true;
  Activate_Main();
  // They lie over the others, and none has the keys before the operator has asked for it.
  for (const Form_Id form : {Form_Id::Port_IO, Form_Id::JogKey}) {
    const QString name = Name_Of(form);
    if (Tool_Window_Is_Open(name)) Tool_Windows[name].Frame->raise();
  }
  if (Form_Was_Open(Form_Id::Simulated_Machine).value_or(false)) {
    Show_Tool_Window(Name_Of(Form_Id::Simulated_Machine));
  }
}

bool Main_Frame::Tool_Window_Is_Open(const QString& name) const {
  const auto found = Tool_Windows.find(name);
  return found != Tool_Windows.end() && found->second.Frame != nullptr &&
         found->second.Frame->isVisible();
}

void Main_Frame::Restore_Place(const QString& name, QMdiSubWindow& frame) {
  const auto form = Form_Of(name);
  if (!form) {
    // At the left, so that the panel with its E-stop stays in sight.
    const QSize wanted = frame.widget()->testAttribute(Qt::WA_Resized)
                             ? frame.widget()->size().expandedTo(frame.minimumSizeHint())
                             : frame.sizeHint();
    return frame.setGeometry({{0, 0}, wanted.boundedTo(Area->contentsRect().size())});
  }
  const Window_Place place = Read_Form_Place(*form);
  // Never so small that its controls lie over each other, as long as there is room.
  const QSize room = QSize(place.Width, place.Height)
                         .expandedTo(frame.minimumSizeHint())
                         .boundedTo(Area->contentsRect().size());
  const QPoint corner(std::min(place.Left, Area->width() - room.width()),
                      std::min(place.Top, Area->height() - room.height()));
  const QRect normal(corner, room);
  if (frame.isMaximized() || frame.isMinimized()) frame.showNormal();
  frame.setGeometry(normal);
  frame.setProperty(Normal_Place, normal);
  if (place.WindowState == Window_Maximized) frame.setWindowState(Qt::WindowMaximized);
}

// Tells the layout how much room the inner windows have and the panel needs.
void Main_Frame::Tell_Area() {
  QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
  const QRect inside = Area->contentsRect();
  Window_Area.Tool_Windows = Screen_Area{0, 0, inside.width(), inside.height()};
  Window_Area.Panel_Width = Text_Height() * 49;
}

// The windows inside: the main one stays as the operator has it, and the layout fills it.
void Main_Frame::Reset_Places() {
  Tell_Area();
  Reset_Form_Positions();
  for (auto& [name, window] : Tool_Windows) {
    if (window.Frame != nullptr) Restore_Place(name, *window.Frame);
  }
}

void Main_Frame::Keep_Place(const QString& name, const QWidget& frame) {
  if (const auto form = Form_Of(name)) Write_Form_Place(*form, Place_Of(frame));
}

void Main_Frame::Close_Tool_Windows() {
  for (auto& [name, window] : Tool_Windows) {
    if (window.Frame == nullptr) continue;
    Keep_Place(name, *window.Frame);
    delete window.Frame;
    window.Frame = nullptr;
  }
}

// A closed one may still stand in a handler of its own that waits in a yield: it goes when that has
// ended.
void Main_Frame::Retire(QMdiSubWindow*& frame) {
  Area->removeSubWindow(frame);
  frame->deleteLater();
  frame = nullptr;
}

void Main_Frame::Close_Setup_Windows() {
  for (auto& [name, window] : Tool_Windows) {
    if (window.Opens_Anew && window.Frame != nullptr) Retire(window.Frame);
  }
}

// A tool window that the operator closes is hidden and keeps what it shows.
bool Main_Frame::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Move || event->type() == QEvent::Resize) {
    auto* frame = qobject_cast<QMdiSubWindow*>(watched);
    if (frame != nullptr && !frame->isMaximized() && !frame->isMinimized()) {
      frame->setProperty(Normal_Place, frame->geometry());
    }
  }
  if (event->type() == QEvent::Close) {
    if (auto* frame = qobject_cast<QMdiSubWindow*>(watched)) {
      Jog_Guard_Window_Lost();
      frame->hide();
      event->ignore();
      return true;
    }
  }
  return QMainWindow::eventFilter(watched, event);
}

// --- The window itself ---------------------------------------------------------------------------

void Main_Frame::changeEvent(QEvent* event) {
  if (event->type() == QEvent::ActivationChange) {
    if (isActiveWindow()) {
      if (Started) Activate_Main();
    } else if (QApplication::activeWindow() == nullptr) {
      Jog_Guard_Window_Lost();
    }
  }
  if (event->type() == QEvent::WindowStateChange && isMinimized()) Jog_Guard_Window_Lost();
  QMainWindow::changeEvent(event);
}

// In mid-move nothing is asked: a box would hold up the pulses, and an end by a slip of the hand
// would spoil the part. A request to terminate from outside does not come this way.
void Main_Frame::closeEvent(QCloseEvent* event) {
  event->ignore();
  if (Machine.CNCMode == CNC_Running || Anything_Moves()) {
    Platform.Beep();
    Tell("The machine is moving. Press Stop first, then close the program.", 5);
    return;
  }
  if (May_Lose_Program()) Unload_Main();
}

void Main_Frame::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void Main_Frame::dropEvent(QDropEvent* event) {
  for (const QUrl& url : event->mimeData()->urls()) {
    if (url.isLocalFile()) return Open_Path(url.toLocalFile());
  }
}

void Main_Frame::Open_Path(const QString& path) {
  LoadRecentFile(path.toStdString());
}

}  // namespace norvik

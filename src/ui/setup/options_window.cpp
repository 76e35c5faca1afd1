#include "ui/setup/options_window.h"

#include "app/machine_menu.h"
#include "app/options/option_pages.h"
#include "app/options/option_search.h"
#include "app/options/options_form.h"
#include "core/operation.h"
#include "ui/setup/compare_window.h"
#include "ui/setup/option_page_view.h"
#include "ui/widgets/theme.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QStackedWidget>

namespace norvik {

namespace {

QString Words_Of(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QListWidget* Left_List(const QString& name, const QString& title) {
  auto* list = new QListWidget;
  list->setObjectName(name);
  list->setAccessibleName(title);
  list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  list->setWordWrap(true);
  return list;
}

QPushButton* Foot_Button(QHBoxLayout& row, const QString& name, const QString& text,
                         const QString& tip, std::function<void()> clicked) {
  auto* button = new QPushButton(text);
  button->setObjectName(name);
  button->setToolTip(tip);
  button->setMinimumHeight(Finger_Height());
  QObject::connect(button, &QPushButton::clicked, button, std::move(clicked));
  row.addWidget(button);
  return button;
}

QLabel* Foot_Words(const QString& name) {
  auto* label = new QLabel;
  label->setObjectName(name);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  return label;
}

}  // namespace

Options_Window::Options_Window(QWidget* parent) : QWidget(parent) {
  setObjectName("Options");
  setWindowTitle("Options");
  Options_Form_Load();
  auto* rows = new QVBoxLayout(this);
  auto* columns = new QHBoxLayout;
  columns->addWidget(Build_Left());
  Pages = new QStackedWidget;
  columns->addWidget(Pages, 1);
  rows->addLayout(columns, 1);
  rows->addWidget(Build_Foot());
  resize(Text_Height() * 50, Text_Height() * 38);
  // Another one may take its place before it is gone.
  const QPointer<Options_Window> self = this;
  Options_Host.Form_Changed = [self] {
    if (self) self->Show_Form();
  };
  Options_Host.Go_To_Place = [self] {
    if (self) self->Go_To_Place();
  };
  Options_Host.Close = [self] {
    if (self && self->parentWidget() != nullptr) self->parentWidget()->close();
  };
  setFocusProxy(Text_Search);
  Go_To_Place();
}

QWidget* Options_Window::Build_Left() {
  auto* area = new QWidget;
  auto* rows = new QVBoxLayout(area);
  rows->setContentsMargins(0, 0, 0, 0);
  Text_Search = new QLineEdit;
  Text_Search->setObjectName("Text_Search");
  Text_Search->setPlaceholderText("Find a setting");
  Text_Search->setAccessibleName("Find a setting by any of its words");
  Text_Search->setToolTip("By any of its words: backlash, motor enable, Axis_SPI");
  Text_Search->setClearButtonEnabled(true);
  Text_Search->setMinimumHeight(Finger_Height() * 3 / 4);
  Text_Search->installEventFilter(this);
  rows->addWidget(Text_Search);
  List_Pages = Left_List("List_Pages", "Pages");
  for (const Option_Page& page : Option_Pages()) List_Pages->addItem(Words_Of(page.Name));
  List_Found = Left_List("List_Found", "Settings that were found");
  List_Found->hide();
  rows->addWidget(List_Pages, 1);
  rows->addWidget(List_Found, 1);
  area->setFixedWidth(Text_Height() * 12);
  connect(Text_Search, &QLineEdit::textChanged, this, &Options_Window::Search);
  connect(List_Pages, &QListWidget::currentTextChanged, this, [this](const QString& page) {
    if (page.isEmpty() || page.toStdString() == Options_Form.Page) return;
    Options_Form.Page = page.toStdString();
    Options_Form.Shown_Key.clear();
    Go_To_Place();
  });
  connect(List_Found, &QListWidget::itemClicked, this,
          [this](QListWidgetItem* item) { Open_Found(*item); });
  connect(List_Found, &QListWidget::itemActivated, this,
          [this](QListWidgetItem* item) { Open_Found(*item); });
  return area;
}

QWidget* Options_Window::Build_Foot() {
  auto* area = new QWidget;
  auto* rows = new QVBoxLayout(area);
  rows->setContentsMargins(0, 0, 0, 0);
  Consequences = Foot_Words("Label_Consequences");
  Result = Foot_Words("Label_Result");
  rows->addWidget(Consequences);
  rows->addWidget(Result);
  auto* row = new QHBoxLayout;
  Foot_Button(*row, "Command_Compare", "Com&pare with file...",
              "Which settings another machine file has otherwise",
              [this] { Compare_With_File(*this); });
  // The reset closes this window, so it begins when the button is done with its click.
  Foot_Button(*row, "Command_Parameter_Reset", "&Factory settings...",
              "Every parameter to its factory value", [] {
                QMetaObject::invokeMethod(
                    qApp, [] { Command_Parameter_Reset_Click(); }, Qt::QueuedConnection);
              });
  row->addStretch(1);
  Foot_Button(*row, "Command_OK", "&OK", "Apply and close", Options_Command_OK_Click);
  Foot_Button(*row, "Command_Cancel", "&Cancel", "Close; what was not applied is forgotten",
              Options_Command_Cancel_Click);
  Foot_Button(*row, "Command_Apply", "&Apply", "Take all changes and save them",
              [] { Options_Command_Apply_Click(); });
  rows->addLayout(row);
  return area;
}

void Options_Window::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  Refresh_Options_Info();
}

void Options_Window::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  const bool minimized = parentWidget() != nullptr && parentWidget()->isMinimized();
  if (event->spontaneous() || minimized) return;
  Options_Form_Unload();
}

bool Options_Window::eventFilter(QObject* watched, QEvent* event) {
  if (watched == Text_Search && event->type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Down && List_Found->count() > 0) {
      List_Found->setFocus();
      List_Found->setCurrentRow(0);
      return true;
    }
    if ((key == Qt::Key_Return || key == Qt::Key_Enter) && List_Found->count() > 0) {
      Open_Found(*List_Found->item(0));
      return true;
    }
  }
  return QWidget::eventFilter(watched, event);
}

// ESC stops a machine that moves; what is typed here stays then.
void Options_Window::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Escape || Anything_Moves()) return QWidget::keyPressEvent(event);
  if (!Text_Search->text().isEmpty()) return Text_Search->clear();
  Options_Command_Cancel_Click();
}

void Options_Window::Search(const QString& words) {
  List_Found->clear();
  for (const Option_Found& found : Find_Options(words.toStdString())) {
    auto* item = new QListWidgetItem(
        QString::fromStdString(found.Label) + " (" + Words_Of(found.Page) + ")", List_Found);
    item->setData(Qt::UserRole, QString::fromStdString(found.Key));
  }
  const bool searching = !words.trimmed().isEmpty();
  if (searching && List_Found->count() == 0) {
    (new QListWidgetItem("No setting has these words.", List_Found))->setFlags(Qt::NoItemFlags);
  }
  List_Found->setVisible(searching);
  List_Pages->setVisible(!searching);
}

void Options_Window::Open_Found(const QListWidgetItem& item) {
  const QString key = item.data(Qt::UserRole).toString();
  if (!key.isEmpty()) Show_Option(key.toStdString());
}

Option_Page_View& Options_Window::View_Of(const QString& page) {
  Option_Page_View*& view = Views[page];
  if (view == nullptr) {
    for (const Option_Page& candidate : Option_Pages()) {
      if (Words_Of(candidate.Name) == page) view = new Option_Page_View(candidate);
    }
    if (view == nullptr) view = new Option_Page_View(Option_Pages().front());
    Pages->addWidget(view);
  }
  return *view;
}

void Options_Window::Go_To_Place() {
  const QString page = QString::fromStdString(Options_Form.Page);
  // A page that is laid out takes the time of many pulses.
  if (!Views.contains(page) && Anything_Moves()) return;
  Option_Page_View& view = View_Of(page);
  Pages->setCurrentWidget(&view);
  const auto items = List_Pages->findItems(page, Qt::MatchExactly);
  if (!items.isEmpty()) List_Pages->setCurrentItem(items.front());
  Show_Form();
  if (Options_Form.Shown_Key.empty()) return;
  // The place of a control on a page that has just been made is known once it was laid out.
  view.widget()->layout()->activate();
  view.Go_To(Options_Form.Shown_Key);
}

void Options_Window::Show_Form() {
  if (Options_Form.Fields.empty()) return;
  if (auto* view = static_cast<Option_Page_View*>(Pages->currentWidget())) view->Show_Fields();
  Consequences->setText(QString::fromStdString(Options_Form.Label_Consequences));
  Consequences->setVisible(!Consequences->text().isEmpty());
  Result->setText(QString::fromStdString(Options_Form.Label_Result));
  Result->setVisible(!Result->text().isEmpty());
  QPalette palette = Result->palette();
  palette.setColor(QPalette::WindowText,
                   Options_Form.Result_Is_Trouble ? Colors().Stop : Colors().Run);
  Result->setPalette(palette);
}

}  // namespace norvik

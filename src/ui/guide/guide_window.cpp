#include "ui/guide/guide_window.h"

#include "ui/widgets/theme.h"

#include <algorithm>

#include <QHBoxLayout>
#include <QListWidget>
#include <QScrollArea>
#include <QSignalBlocker>

namespace norvik {

namespace {

constexpr int Refresh_Ms = 250;

}  // namespace

Guide_Window::Guide_Window(QWidget* parent) : QWidget(parent) {
  setObjectName("Guide");
  setWindowTitle("Set up a machine");
  Pages = new QListWidget;
  Pages->setObjectName("List_Pages");
  Pages->setAccessibleName("Pages");
  Pages->setSpacing(Text_Height() / 8);
  Pages->setMaximumWidth(Text_Height() * 11);
  Area = new QScrollArea;
  Area->setWidgetResizable(true);
  Area->setFrameShape(QFrame::NoFrame);
  Hint = new QLabel;
  Hint->setObjectName("Label_Hint");
  Hint->setWordWrap(true);
  Hint->setMinimumHeight(Text_Height() * 3);
  Hint->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  auto* right = new QVBoxLayout;
  right->addWidget(Area, 1);
  right->addWidget(Hint);
  right->addWidget(Build_Foot());
  auto* row = new QHBoxLayout(this);
  row->addWidget(Pages);
  row->addLayout(right, 1);
  connect(Pages, &QListWidget::currentRowChanged, this, [](int index) {
    const auto pages = Guide_Pages_Of_Setup();
    if (index >= 0 && index < std::ssize(pages)) Guide_Go(pages[static_cast<std::size_t>(index)]);
  });
  Listener.emplace(Guide_Host.Form_Changed, [this] { Show_Form(); });
  Timer = Platform.Start_Timer(Refresh_Ms, [this] {
    if (!isVisible()) return;
    if (Guide_Form.Page == Guide_Page::EStop)
      Guide_Watch_EStop();
    else if (Guide_Form.Page == Guide_Page::Wiring)
      Show_Form();
  });
  resize(Text_Height() * 52, Text_Height() * 30);
  Show_Form();
}

Guide_Window::~Guide_Window() {
  Platform.Stop_Timer(Timer);
}

QWidget* Guide_Window::Build_Foot() {
  auto* foot = new QWidget;
  auto* row = new QHBoxLayout(foot);
  row->setContentsMargins(0, 0, 0, 0);
  row->addStretch(1);
  const auto button = [&](const char* name, const char* text, void (*clicked)()) {
    auto* made = new QPushButton(text);
    made->setObjectName(name);
    made->setMinimumHeight(Finger_Height());
    connect(made, &QPushButton::clicked, this, clicked);
    row->addWidget(made);
    return made;
  };
  Back = button("Command_Back", "Bac&k", Guide_Back);
  Next = button("Command_Next", "Ne&xt", Guide_Next);
  return foot;
}

void Guide_Window::Show_Form() {
  Show_List();
  Show_Page();
  Hint->setText(QString::fromStdString(Guide_Form.Label_Hint));
  const auto pages = Guide_Pages_Of_Setup();
  Back->setEnabled(Guide_Form.Page != pages.front());
  Next->setEnabled(Guide_Form.Page != pages.back());
}

// A board has fewer pages than the parallel port.
void Guide_Window::Show_List() {
  const QSignalBlocker quiet(Pages);
  const auto pages = Guide_Pages_Of_Setup();
  if (Pages->count() != std::ssize(pages)) {
    Pages->clear();
    for (const Guide_Page page : pages) {
      const std::string_view title = Guide_Row(page).Title;
      Pages->addItem(QString::fromUtf8(title.data(), std::ssize(title)));
    }
  }
  const auto here = std::ranges::find(pages, Guide_Form.Page);
  Pages->setCurrentRow(static_cast<int>(here - pages.begin()));
}

void Guide_Window::Show_Page() {
  if (Page == nullptr || Page->Page() != Guide_Form.Page) {
    // The one before goes later: one of its buttons may be at work.
    if (QWidget* before = Area->takeWidget()) before->deleteLater();
    Page = Make_Guide_Page(Guide_Form.Page);
    Area->setWidget(Page);
    if (Page->focusProxy() != nullptr) Page->setFocus();
  }
  Page->Show_Form();
}

}  // namespace norvik

// The pages E-stop, Timing, Corrections, First program and Check.
#include "core/corrections.h"
#include "core/setup.h"
#include "ui/guide/guide_page.h"
#include "ui/widgets/theme.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QScrollArea>

namespace norvik {

namespace {

class EStop_Page : public Guide_Page_Widget {
 public:
  EStop_Page() : Guide_Page_Widget(Guide_Page::EStop) {
    Add_Text("Label_EStop", [] {
      const QString input = QString::fromStdString(Guide_Input_Words(0));
      if (input == "not wired")
        return QString(
            "No E-stop input is wired. Let the E-stop contact cut the power of motors and "
            "spindle itself, and wire a second contact to the input.");
      if (Guide_Form.EStop_Seen_Off) return QString("Seen pressed, and seen released. It works.");
      if (Guide_Form.EStop_Seen_On)
        return "The input is " + input + ". Seen pressed; now release it.";
      return "The input is " + input + ". Press the E-stop button of the machine.";
    });
    Rows().addStretch(1);
  }
};

class Timing_Page : public Guide_Page_Widget {
 public:
  Timing_Page() : Guide_Page_Widget(Guide_Page::Time_Constant) {
    auto* row = new QHBoxLayout;
    Add_Button(*row, "Command_Find", "&Find it now", "Takes up to two minutes; no axis moves",
               Guide_Find_Time_Constant);
    Add_Button(*row, "Command_Timing_Window", "System &timing window...",
               "The same at a feed of your own", [] { Guide_Host.Open_Window("System_Timing"); });
    row->addStretch(1);
    Rows().addLayout(row);
    Add_Text("Label_Time_Constant", [] {
      return "The time constant is " + QString::number(MachineSetup.Parallel_Time_Constant) +
             " microseconds.";
    });
    Rows().addStretch(1);
  }
};

class Guide_Corrections_Page : public Guide_Page_Widget {
 public:
  Guide_Corrections_Page() : Guide_Page_Widget(Guide_Page::Corrections) {
    auto* row = new QHBoxLayout;
    Add_Button(*row, "Command_As_The_System_Was", "As the system &was", "Switches all of them off",
               [] { Guide_Take_Corrections(false); });
    Add_Button(*row, "Command_Recommended", "&Recommended",
               "Switches on those that suit every machine", [] { Guide_Take_Corrections(true); });
    row->addStretch(1);
    Rows().addLayout(row);
    Add_Text("Label_Corrections", [] {
      QString text;
      for (const Setup_Row* one : Correction_List()) {
        const auto words = [](std::string_view part) {
          return QString::fromUtf8(part.data(), std::ssize(part)).toHtmlEscaped();
        };
        text += "<p><b>" + words(one->Label) + (Correction_Is_On(*one) ? ": on" : ": off") +
                "</b>" + (one->Recommended.empty() ? "" : " (recommended)") + "<br>" +
                words(one->Help) + "</p>";
      }
      return text;
    });
    Rows().addStretch(1);
  }
};

class Program_Page : public Guide_Page_Widget {
 public:
  Program_Page() : Guide_Page_Widget(Guide_Page::Program) {
    auto* row = new QHBoxLayout;
    Add_Button(*row, "Command_First_Program", "&Put it into the editor",
               "A square over half of the table, at the height of travel moves",
               Guide_Open_First_Program);
    row->addStretch(1);
    Rows().addLayout(row);
    Rows().addStretch(1);
  }
};

class Finish_Page : public Guide_Page_Widget {
 public:
  Finish_Page() : Guide_Page_Widget(Guide_Page::Finish) {
    auto* area = new QScrollArea;
    area->setObjectName("List_Findings");
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidget(List = new QWidget);
    new QVBoxLayout(List);
    Rows().addWidget(area, 1);
    Also([this] { Show_Findings(); });
    auto* row = new QHBoxLayout;
    Add_Button(*row, "Command_Check", "Check a&gain", "Looks at the setup as it is now",
               Guide_Check);
    Add_Button(*row, "Command_Finish", "&Finish", "Saves the machine", [] { Guide_Finish(); });
    row->addStretch(1);
    Rows().addLayout(row);
  }

 private:
  void Show_Findings() {
    if (Shown == Guide_Form.List_Findings.size() && Shown != 0 && Same_As_Shown()) return;
    delete List->layout();
    qDeleteAll(List->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly));
    auto* rows = new QVBoxLayout(List);
    Texts.clear();
    for (std::size_t i = 0; i < Guide_Form.List_Findings.size(); ++i) {
      const Guide_Finding& finding = Guide_Form.List_Findings[i];
      auto* text = new QLabel(QString::fromStdString(finding.Finding.Text));
      text->setWordWrap(true);
      auto* accepted = new QCheckBox("I have read this; it is meant so");
      accepted->setObjectName("Check_Accept_" + QString::number(i));
      accepted->setChecked(finding.Accepted);
      connect(accepted, &QCheckBox::toggled, this, [i](bool on) { Guide_Accept_Finding(i, on); });
      rows->addWidget(text);
      rows->addWidget(accepted);
      rows->addSpacing(Text_Height() / 2);
      Texts.push_back(finding.Finding.Text);
    }
    if (Guide_Form.List_Findings.empty())
      rows->addWidget(new QLabel("Nothing in this setup should surprise you."));
    rows->addStretch(1);
    Shown = Guide_Form.List_Findings.size();
  }
  bool Same_As_Shown() const {
    for (std::size_t i = 0; i < Shown; ++i)
      if (Texts[i] != Guide_Form.List_Findings[i].Finding.Text) return false;
    return true;
  }

  QWidget* List;
  std::size_t Shown = 0;
  std::vector<std::string> Texts;
};

}  // namespace

Guide_Page_Widget* Make_Last_Page(Guide_Page page) {
  switch (page) {
    case Guide_Page::EStop:
      return new EStop_Page;
    case Guide_Page::Time_Constant:
      return new Timing_Page;
    case Guide_Page::Corrections:
      return new Guide_Corrections_Page;
    case Guide_Page::Program:
      return new Program_Page;
    case Guide_Page::Finish:
      return new Finish_Page;
    default:
      return new Guide_Page_Widget(page);
  }
}

}  // namespace norvik

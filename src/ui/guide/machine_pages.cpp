// The pages that say what the machine is: name, drive, pins.
#include "app/guide/pin_layouts.h"
#include "app/guide/starting_points.h"
#include "core/axes.h"
#include "core/setup.h"
#include "parallel/pin_map.h"
#include "ui/guide/guide_page.h"
#include "ui/widgets/panel_group.h"
#include "ui/widgets/theme.h"

#include <array>

#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QRadioButton>

namespace norvik {

namespace {

QString Text_Of(std::string_view text) {
  return QString::fromUtf8(text.data(), std::ssize(text));
}

class Name_Page : public Guide_Page_Widget {
 public:
  Name_Page() : Guide_Page_Widget(Guide_Page::Name) {
    auto* grid = new QVBoxLayout;
    auto* name = Add_Field(*grid, "Text_Name", "&Name of the machine",
                           []() -> std::string& { return Guide_Form.Text_Name; });
    auto* title = new QLabel("&Begin from");
    auto* points = new QComboBox;
    points->setObjectName("Combo_Starting_Point");
    points->setAccessibleName("Begin from");
    points->setMinimumHeight(Finger_Height() * 3 / 4);
    title->setBuddy(points);
    for (const Starting_Point& point : Starting_Points()) points->addItem(Text_Of(point.Words));
    grid->addWidget(title);
    grid->addWidget(points);
    connect(points, &QComboBox::activated, this,
            [](int index) { Guide_Form.Combo_Starting_Point = index; });
    Rows().addLayout(grid);
    Add_Text("Label_Machine_File", [] {
      return Guide_Form.Has_Machine ? QString("The machine is made; its file is ") +
                                          QString::fromStdString(Guide_Form.Text_Name) + ".ini."
                                    : QString();
    });
    Also([name, points] {
      points->setCurrentIndex(Guide_Form.Combo_Starting_Point);
      name->setEnabled(!Guide_Form.Has_Machine);
      points->setEnabled(!Guide_Form.Has_Machine);
    });
    Rows().addStretch(1);
    setFocusProxy(name);
  }
};

class Drive_Page : public Guide_Page_Widget {
 public:
  Drive_Page() : Guide_Page_Widget(Guide_Page::Drive) {
    struct Choice {
      const char *Name, *Text;
      int Type;
    };
    static constexpr std::array choices{
        Choice{"Option_Parallel", "&Parallel port: step and direction pins", 1},
        Choice{"Option_Dravon", "Serial board &Dravon", 2},
        Choice{"Option_Pelmar", "Serial board P&elmar", 3},
    };
    for (const Choice& choice : choices) {
      auto* button = new QRadioButton(choice.Text);
      button->setObjectName(choice.Name);
      button->setMinimumHeight(Finger_Height() * 3 / 4);
      Rows().addWidget(button);
      connect(button, &QRadioButton::clicked, this,
              [type = choice.Type] { Guide_Choose_Drive(type); });
      Also([button, type = choice.Type] {
        button->setChecked(std::min<int>(MachineSetup.Parallel_Port_Type, 3) == type);
      });
    }
    Add_Text("Label_Drive", [] { return QString::fromStdString(Guide_Drive_Words()); });
    auto* row = new QHBoxLayout;
    Add_Button(*row, "Command_Port_Window", "P&ort window...",
               "Serial port of the board, address of the connector",
               [] { Guide_Host.Open_Window("Port_Setup"); });
    row->addStretch(1);
    Rows().addLayout(row);
    Rows().addStretch(1);
  }
};

class Pins_Page : public Guide_Page_Widget {
 public:
  Pins_Page() : Guide_Page_Widget(Guide_Page::Wiring) {
    auto* row = new QHBoxLayout;
    auto* layouts = new QComboBox;
    layouts->setObjectName("Combo_Layout");
    layouts->setAccessibleName("Layout of the connector");
    layouts->setMinimumHeight(Finger_Height() * 3 / 4);
    for (const Pin_Layout& layout : Pin_Layouts()) layouts->addItem(Text_Of(layout.Name));
    Rows().addWidget(layouts);
    Add_Button(*row, "Command_Take_Layout", "&Use it", "Sets every pin by this layout",
               [layouts] { Guide_Take_Layout(layouts->currentIndex()); });
    Add_Button(*row, "Command_Port_Window", "Set each &pin...", "The window of ports and pins",
               [] { Guide_Host.Open_Window("Port_Setup"); });
    row->addStretch(1);
    Rows().addLayout(row);
    Rows().addWidget(Panel_Group("Outputs", Outputs()));
    Rows().addWidget(Panel_Group("Inputs", Inputs()));
    Rows().addStretch(1);
  }

 private:
  QLayout* Outputs() {
    auto* grid = new QGridLayout;
    for (int n = 1; n <= 5; ++n) {
      auto* name = new QLabel;
      Also([name, n] { name->setText(QString::fromStdString(MachineSetup.Output_Names[n])); });
      grid->addWidget(name, 0, n - 1);
      auto* cell = new QHBoxLayout;
      Add_Button(*cell, ("Command_Wiggle_" + std::to_string(n)).c_str(), "On and off",
                 "Switches this output on and off, three times", [n] { Guide_Wiggle_Output(n); });
      grid->addLayout(cell, 1, n - 1);
    }
    return grid;
  }

  QLayout* Inputs() {
    auto* grid = new QGridLayout;
    constexpr int inputs = 6;
    for (int input = 0; input < inputs; ++input) {
      auto* role = new QLabel(QString::fromStdString(Input_Role(input)));
      auto* lamp = new QLabel;
      lamp->setObjectName("Lamp_" + QString::number(input));
      lamp->setAlignment(Qt::AlignCenter);
      lamp->setAutoFillBackground(true);
      lamp->setMinimumHeight(Finger_Height() * 3 / 4);
      grid->addWidget(role, 2 * (input / 3), input % 3);
      grid->addWidget(lamp, 2 * (input / 3) + 1, input % 3);
      Also([lamp, input] {
        const QString words = QString::fromStdString(Guide_Input_Words(input));
        if (lamp->text() == words) return;
        lamp->setText(words);
        if (words == "on")
          Set_Face(*lamp, Colors().Run, Ink_On_Face(Colors().Run));
        else
          Set_Face(*lamp, QColor(), QColor());
      });
    }
    return grid;
  }
};

}  // namespace

Guide_Page_Widget* Make_Machine_Page(Guide_Page page) {
  if (page == Guide_Page::Name) return new Name_Page;
  if (page == Guide_Page::Drive) return new Drive_Page;
  return new Pins_Page;
}

}  // namespace norvik

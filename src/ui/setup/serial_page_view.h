// serial_page_view.h: the pages "Serial board" and "Encoders" of the port window.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <QWidget>

class QCheckBox;
class QComboBox;
class QFormLayout;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;

namespace norvik {

// Both pages show one record, Serial_Page.
class Serial_Page_View {
 public:
  Serial_Page_View();

  QWidget* Board() const { return Board_Page; }
  QWidget* Encoders() const { return Encoder_Page; }
  // Copies what is typed, after it was loaded anew.
  void Show_Form();
  // Copies what the board tells.
  void Show_Board();

 private:
  QWidget* Build_Setup();
  QWidget* Build_Health();
  QWidget* Build_Switches();
  QWidget* Build_Hands();
  void Build_Encoder_Row(QGridLayout& grid, int axis);
  void Show_Serial_Port();

  QLineEdit* Field(const QString& name, const QString& tip, std::string& text);
  QComboBox* List(const QString& name, const QString& tip, const std::vector<QString>& offered,
                  std::string& text);
  QCheckBox* Check(const QString& words, const QString& name, const QString& tip, bool& value);
  QLabel* Figure(const QString& name, const std::string& text);
  QPushButton* Lamp(const QString& words, const QString& name, const QString& tip, const bool& on,
                    bool alarm);

  QWidget *Board_Page = nullptr, *Encoder_Page = nullptr;
  QComboBox* Serial_Port = nullptr;
  QLabel* Port_Words = nullptr;
  std::vector<std::function<void()>> Typed, Told;  // copies of the record's two halves
};

}  // namespace norvik

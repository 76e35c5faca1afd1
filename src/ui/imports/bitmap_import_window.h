// bitmap_import_window.h: the window `Bitmap_Import`: choosing a picture by its look.
#pragma once

#include "ui/widgets/remembered_dialog.h"

class QLabel;
class QLineEdit;
class QListWidget;

namespace norvik {

class Bitmap_Import_Window : public Remembered_Dialog {
 public:
  explicit Bitmap_Import_Window(QWidget* parent);
  void done(int result) override;
  // Copies the record to the controls.
  void Show_Form();

 private:
  QWidget* Build_Lists();
  QWidget* Build_Foot();

  QLabel* Folder;
  QListWidget* Folders;
  QListWidget* Pictures;
  QWidget* Preview;
  QLineEdit* File_Name;
  QLabel* Hint;
};

// The menu opens this window over `parent`, which owns it.
void Connect_Bitmap_Import(QWidget& parent);

}  // namespace norvik

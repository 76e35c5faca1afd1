// remembered_dialog.h: a dialog that comes back where it stood.
#pragma once

#include "core/window_memory.h"

#include <QDialog>

namespace norvik {

// Reads its place when it opens and writes it when it closes. Opening it takes the focus, so
// whatever was held by a key or a button ends.
class Remembered_Dialog : public QDialog {
 public:
  Remembered_Dialog(Form_Id form, QWidget* parent);
  void done(int result) override;

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  Form_Id Form;
};

}  // namespace norvik

#include "ui/imports/bitmap_import_window.h"

#include "app/bitmap_form.h"
#include "app/main_form.h"
#include "ui/widgets/theme.h"

#include <QDir>
#include <QGridLayout>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QSignalBlocker>

namespace norvik {

namespace {

// The picture of the record, as large as the frame allows, with its proportions.
class Preview_Picture : public QFrame {
 public:
  Preview_Picture() {
    setObjectName("Picture_Preview");
    setFrameShape(QFrame::StyledPanel);
    setMinimumSize(Text_Height() * 14, Text_Height() * 14);
  }

 protected:
  void paintEvent(QPaintEvent* event) override {
    QPainter painter(this);
    painter.fillRect(contentsRect(), palette().color(QPalette::Base));
    const auto& picture = Bitmap_Import.Picture_Preview;
    if (picture && picture->Width > 0 && picture->Height > 0) {
      const QImage image(picture->Rgb.data(), picture->Width, picture->Height,
                         picture->Width * qsizetype{3}, QImage::Format_RGB888);
      QRect place(QPoint(), image.size().scaled(contentsRect().size(), Qt::KeepAspectRatio));
      place.moveCenter(contentsRect().center());
      painter.setRenderHint(QPainter::SmoothPixmapTransform);
      painter.drawImage(place, image);
    } else {
      painter.setPen(palette().color(QPalette::PlaceholderText));
      painter.drawText(contentsRect(), Qt::AlignCenter, "No picture");
    }
    QFrame::paintEvent(event);
  }
};

QListWidget* Name_List(const QString& name) {
  auto* list = new QListWidget;
  list->setObjectName(name);
  list->setUniformItemSizes(true);
  list->setMinimumWidth(Text_Height() * 10);
  return list;
}

void Fill(QListWidget& list, const std::vector<std::string>& names) {
  const QSignalBlocker quiet(list);
  list.clear();
  for (const std::string& name : names) {
    auto* item = new QListWidgetItem(QString::fromStdString(name), &list);
    item->setSizeHint({0, Finger_Height() * 3 / 4});
  }
}

QLabel* Title(const QString& text, QWidget* of) {
  auto* title = new QLabel(text);
  title->setBuddy(of);
  return title;
}

QPushButton* Finger_Button(const QString& name, const QString& text) {
  auto* button = new QPushButton(text);
  button->setObjectName(name);
  button->setMinimumHeight(Finger_Height());
  button->setAutoDefault(false);
  return button;
}

}  // namespace

Bitmap_Import_Window::Bitmap_Import_Window(QWidget* parent)
    : Remembered_Dialog(Form_Id::Bitmap_Choice, parent) {
  setModal(true);
  auto* rows = new QVBoxLayout(this);
  Folder = new QLabel;
  Folder->setObjectName("Label_Folder");
  Folder->setTextFormat(Qt::PlainText);
  Folder->setFont(Bold_Font(1.0));
  Folder->setWordWrap(true);
  rows->addWidget(Folder);
  rows->addWidget(Build_Lists(), 1);
  rows->addWidget(Build_Foot());
}

QWidget* Bitmap_Import_Window::Build_Lists() {
  auto* area = new QWidget;
  auto* grid = new QGridLayout(area);
  grid->setContentsMargins(0, 0, 0, 0);
  Folders = Name_List("Dir1");
  Pictures = Name_List("File1");
  Preview = new Preview_Picture;
  grid->addWidget(Title("&Folders", Folders), 0, 0);
  grid->addWidget(Title("&Pictures", Pictures), 0, 1);
  grid->addWidget(Folders, 1, 0);
  grid->addWidget(Pictures, 1, 1);
  grid->addWidget(Preview, 0, 2, 2, 1);
  grid->setColumnStretch(0, 2);
  grid->setColumnStretch(1, 3);
  grid->setColumnStretch(2, 4);
  connect(Folders, &QListWidget::itemActivated, this, [this](QListWidgetItem* item) {
    Bitmap_Import_Dir1_Change(static_cast<std::size_t>(Folders->row(item)));
  });
  connect(Pictures, &QListWidget::currentRowChanged, this, [](int row) {
    if (row >= 0) Bitmap_Import_File1_Click(static_cast<std::size_t>(row));
  });
  connect(Pictures, &QListWidget::itemActivated, this, [this](QListWidgetItem* item) {
    Bitmap_Import_File1_DblClick(static_cast<std::size_t>(Pictures->row(item)));
  });
  return area;
}

QWidget* Bitmap_Import_Window::Build_Foot() {
  auto* area = new QWidget;
  auto* grid = new QGridLayout(area);
  grid->setContentsMargins(0, 0, 0, 0);
  File_Name = new QLineEdit;
  File_Name->setObjectName("Text_FileName");
  File_Name->setMinimumHeight(Finger_Height());
  grid->addWidget(Title("File &name", File_Name), 0, 0);
  grid->addWidget(File_Name, 0, 1);
  Hint = new QLabel;
  Hint->setObjectName("Label_Hint");
  Hint->setTextFormat(Qt::PlainText);
  Hint->setWordWrap(true);
  Hint->setMinimumHeight(Text_Height() * 2);
  grid->addWidget(Hint, 1, 1);
  QPushButton* open = Finger_Button("Command_Open", "&Open");
  open->setDefault(true);
  QPushButton* cancel = Finger_Button("Command_Cancel", "Cancel");
  grid->addWidget(open, 0, 2);
  grid->addWidget(cancel, 1, 2);
  QPushButton* options = Finger_Button("Command_Options", "O&ptions...");
  options->setToolTip("Size, depth and distance of the points; then choose the picture again");
  grid->addWidget(options, 1, 0);
  connect(options, &QPushButton::clicked, this, [] {
    Bitmap_Import_Command_Cancel_Click();
    Main_Host.Show_Setting("Import: Pictures");
  });
  grid->setColumnStretch(1, 1);
  connect(File_Name, &QLineEdit::editingFinished, this,
          [this] { Bitmap_Import_Text_FileName_Change(File_Name->text().toStdString()); });
  connect(open, &QPushButton::clicked, this, [this] {
    Bitmap_Import.Text_FileName = File_Name->text().toStdString();
    Bitmap_Import_Command_Open_Click();
  });
  connect(cancel, &QPushButton::clicked, this, Bitmap_Import_Command_Cancel_Click);
  return area;
}

void Bitmap_Import_Window::Show_Form() {
  const auto& form = Bitmap_Import;
  setWindowTitle(QString::fromStdString(form.Caption));
  const QString folder = QString::fromStdString(form.Folder);
  if (Folder->text() != folder || Folders->count() == 0) {
    Folder->setText(folder);
    Fill(*Folders, form.Dir1);
    Fill(*Pictures, form.File1);
  }
  const QString name = QString::fromStdString(form.Text_FileName);
  if (File_Name->text() != name) File_Name->setText(name);
  const bool is_well = form.Label_Hint.empty();
  QString hint = QString::fromStdString(form.Label_Hint);
  if (is_well && form.Picture_Preview) {
    hint = QString("%1 x %2 pixels")
               .arg(form.Picture_Preview->Width)
               .arg(form.Picture_Preview->Height);
  }
  Hint->setText(hint);
  Preview->update();
}

void Bitmap_Import_Window::done(int result) {
  Bitmap_Import_Form_Unload();
  Remembered_Dialog::done(result);
}

void Connect_Bitmap_Import(QWidget& parent) {
  auto* window = new Bitmap_Import_Window(&parent);
  Bitmap_Host.Form_Changed = [window] { window->Show_Form(); };
  Bitmap_Host.Close = [window] { window->reject(); };
  Bitmap_Host.Show = [window] {
    Bitmap_Import_Form_Load(QDir::homePath().toStdString());
    window->open();
  };
}

}  // namespace norvik

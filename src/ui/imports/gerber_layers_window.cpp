#include "ui/imports/gerber_layers_window.h"

#include "import/gerber/layers.h"
#include "import/pipeline/pipeline.h"
#include "platform/platform.h"
#include "ui/widgets/theme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

namespace norvik {

namespace {

// A row a finger high with a box that is ticked while the row is selected.
class Layer_Row : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    return {QStyledItemDelegate::sizeHint(option, index).width(), Finger_Height()};
  }

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    const bool selected = option->state.testFlag(QStyle::State_Selected);
    option->features |= QStyleOptionViewItem::HasCheckIndicator;
    option->checkState = selected ? Qt::Checked : Qt::Unchecked;
    // The tick says it all; a list painted in the highlight colour from end to end does not.
    option->state.setFlag(QStyle::State_Selected, false);
    // The frame of an empty box is a darker shade of this colour; on a dark ground it would not
    // show.
    option->palette.setColor(QPalette::Window, option->palette.color(QPalette::PlaceholderText));
  }
};

QPushButton* Add_Button(QBoxLayout& row, const QString& name, const QString& text) {
  auto* button = new QPushButton(text);
  button->setObjectName(name);
  button->setMinimumHeight(Finger_Height());
  button->setAutoDefault(false);
  row.addWidget(button);
  return button;
}

}  // namespace

Gerber_Layers_Window::Gerber_Layers_Window(QWidget* parent)
    : Remembered_Dialog(Form_Id::Gerber_Layer_Choice, parent) {
  setWindowTitle("Gerber layers");
  auto* rows = new QVBoxLayout(this);
  auto* heading = new QLabel("The file has several layers. Tick those to import.");
  heading->setWordWrap(true);
  rows->addWidget(heading);
  Layers = new QListWidget;
  Layers->setObjectName("List_Layers");
  Layers->setSelectionMode(QAbstractItemView::MultiSelection);
  Layers->setItemDelegate(new Layer_Row(Layers));
  Layers->setMinimumSize(Text_Height() * 18, Finger_Height() * 3);
  for (const auto& layer : GerberLayerSelection.List_Layers) {
    auto* item = new QListWidgetItem(QString::fromStdString(layer.Name), Layers);
    item->setSelected(layer.Selected);
  }
  rows->addWidget(Layers, 1);

  auto* choices = new QHBoxLayout;
  Count = new QLabel;
  Count->setObjectName("Label_Count");
  choices->addWidget(Count, 1);
  connect(Add_Button(*choices, "Command_All", "Select &all"), &QPushButton::clicked, Layers,
          &QListWidget::selectAll);
  connect(Add_Button(*choices, "Command_None", "Select &none"), &QPushButton::clicked, Layers,
          &QListWidget::clearSelection);
  rows->addLayout(choices);

  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  QPushButton* ok = Add_Button(*buttons, "Command_OK", "OK");
  ok->setDefault(true);
  connect(ok, &QPushButton::clicked, this, &QDialog::accept);
  connect(Add_Button(*buttons, "Command_Cancel", "Cancel"), &QPushButton::clicked, this,
          &QDialog::reject);
  rows->addLayout(buttons);

  connect(Layers, &QListWidget::itemSelectionChanged, this, [this] { Show_Count(); });
  Show_Count();
}

void Gerber_Layers_Window::done(int result) {
  for (int row = 0; row < Layers->count(); ++row) {
    GerberLayerSelection.List_Layers.at(static_cast<std::size_t>(row)).Selected =
        Layers->item(row)->isSelected();
  }
  if (result == Accepted) {
    GerberLayerSelection_Command_OK_Click();
  } else {
    GerberLayerSelection_Command_Cancel_Click();
  }
  Remembered_Dialog::done(result);
}

void Gerber_Layers_Window::Show_Count() {
  Count->setText(
      QString("%1 of %2 selected").arg(Layers->selectedItems().size()).arg(Layers->count()));
}

void Connect_Gerber_Layers(QWidget& parent) {
  Import_Host.Select_Gerber_Layers = [&parent] {
    Platform.Set_Mouse_Pointer(Mouse_Pointer::Normal);
    Gerber_Layers_Window(&parent).exec();
    Platform.Set_Mouse_Pointer(Mouse_Pointer::Busy);
  };
}

}  // namespace norvik

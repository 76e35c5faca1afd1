#include "ui/setup/pin_table.h"

#include "parallel/pin_map.h"
#include "parallel/port_setup.h"
#include "ui/widgets/theme.h"

#include <QComboBox>
#include <QHeaderView>
#include <QPainter>
#include <QSignalBlocker>
#include <QStyledItemDelegate>
#include <QTimer>

namespace norvik {

namespace {

enum Column { Function_Column, Pin_Column, Port_Column, Bit_Column, Invert_Column, Name_Column };
constexpr int Outputs = 17, Inputs = 6;
constexpr int Choices_Role = Qt::UserRole, Typed_Role = Qt::UserRole + 1;

bool Is_Input(int row) {
  return row >= Outputs;
}
int Slot_Of(int row) {
  return Is_Input(row) ? row - Outputs : row + 1;
}
Port_Setup_Row& Record_Of(int row) {
  return Is_Input(row) ? Port_Setup.Input[Slot_Of(row)] : Port_Setup.Output[Slot_Of(row)];
}
// Output 1..5 of a line; 0: the line has no name of its own.
int Named_Output(int row) {
  const int output = Slot_Of(row) - Output_Slot(1) + 1;
  return !Is_Input(row) && output >= 1 ? output : 0;
}

template <std::size_t Count>
QStringList Texts(const char* const (&offered)[Count]) {
  QStringList texts;
  for (const char* text : offered) texts << text;
  return texts;
}

// A list opens on the cell; an arrow at its right says so.
class Choice_Delegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override {
    const QStringList choices = index.data(Choices_Role).toStringList();
    if (choices.isEmpty()) return QStyledItemDelegate::createEditor(parent, option, index);
    auto* box = new QComboBox(parent);
    box->addItems(choices);
    box->setEditable(index.data(Typed_Role).toBool());
    auto* self = const_cast<Choice_Delegate*>(this);
    connect(box, &QComboBox::activated, self, [self, box] {
      emit self->commitData(box);
      emit self->closeEditor(box);
    });
    if (!box->isEditable()) QTimer::singleShot(0, box, &QComboBox::showPopup);
    return box;
  }
  void setEditorData(QWidget* editor, const QModelIndex& index) const override {
    auto* box = qobject_cast<QComboBox*>(editor);
    if (box == nullptr) return QStyledItemDelegate::setEditorData(editor, index);
    box->setCurrentIndex(box->findText(index.data().toString()));
    if (box->isEditable()) box->setEditText(index.data().toString());
  }
  void setModelData(QWidget* editor, QAbstractItemModel* model,
                    const QModelIndex& index) const override {
    auto* box = qobject_cast<QComboBox*>(editor);
    if (box == nullptr) return QStyledItemDelegate::setModelData(editor, model, index);
    if (box->isEditable() || box->currentIndex() >= 0) model->setData(index, box->currentText());
  }
  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override {
    QStyledItemDelegate::paint(painter, option, index);
    if (!(index.flags() & Qt::ItemIsEditable) || index.data(Choices_Role).isNull()) return;
    const double side = Text_Height() / 3.5;
    const QPointF tip(option.rect.right() - 1.8 * side, option.rect.center().y() + side / 2);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(option.palette.color(QPalette::Mid));
    painter->drawPolygon(QPolygonF(
        QList<QPointF>{tip, tip + QPointF(-side, -side * 1.1), tip + QPointF(side, -side * 1.1)}));
    painter->restore();
  }
};

void Set_Editable(QTableWidgetItem& item, bool editable) {
  item.setFlags(editable ? Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable
                         : Qt::ItemFlags(Qt::ItemIsSelectable));
}

}  // namespace

Pin_Table::Pin_Table(std::function<void()> changed)
    : QTableWidget(Outputs + Inputs, Name_Column + 1), Changed(std::move(changed)) {
  setObjectName("Table_Pins");
  setHorizontalHeaderLabels({"Function", "Pin", "Port", "Bit", "Inverted", "Name on the panel"});
  setItemDelegate(new Choice_Delegate(this));
  for (int row = 0; row < rowCount(); ++row) {
    const std::string role = Is_Input(row) ? Input_Role(Slot_Of(row)) : Output_Role(Slot_Of(row));
    QString title = QString::fromStdString(role);
    title[0] = title[0].toUpper();
    for (int column = 0; column < columnCount(); ++column) {
      setItem(row, column, new QTableWidgetItem(column == Function_Column ? title : QString()));
    }
    item(row, Function_Column)->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    item(row, Pin_Column)
        ->setData(Choices_Role,
                  Is_Input(row) ? Texts(Offered_Input_Pins) : Texts(Offered_Output_Pins));
    item(row, Port_Column)->setData(Choices_Role, Texts(Offered_Ports));
    item(row, Port_Column)->setData(Typed_Role, true);
    item(row, Bit_Column)->setData(Choices_Role, Texts(Offered_Bits));
    if (Named_Output(row) > 0) item(row, Name_Column)->setToolTip("Press to write another name");
  }
  verticalHeader()->hide();
  verticalHeader()->setDefaultSectionSize(Text_Height() * 9 / 5);
  horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setStretchLastSection(true);
  const int digit = QFontMetrics(font()).horizontalAdvance('0');
  const int widths[] = {17, 8, 12, 8, 10, 16};
  for (int column = 0; column < columnCount(); ++column)
    setColumnWidth(column, digit * widths[column]);
  setAlternatingRowColors(true);
  setSelectionMode(QAbstractItemView::SingleSelection);
  setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  setMinimumSize(digit * 48, Text_Height() * 10);
  // One press opens the list of a cell.
  connect(this, &QTableWidget::clicked, this, [this](const QModelIndex& index) {
    if (index.flags() & Qt::ItemIsEditable) edit(index);
  });
  connect(this, &QTableWidget::cellChanged, this, &Pin_Table::Take);
}

void Pin_Table::Take(int row, int column) {
  Port_Setup_Row& record = Record_Of(row);
  const std::string text = item(row, column)->text().toStdString();
  const int slot = Slot_Of(row);
  switch (column) {
    case Pin_Column:
      record.Pin = text;
      Is_Input(row) ? Check_Input_Pin(slot) : Check_Output_Pin(slot);
      break;
    case Port_Column:
      record.Port = text;
      Is_Input(row) ? Check_Input_Bit_Port(slot) : Check_Output_Bit_Port(slot);
      break;
    case Bit_Column:
      record.Bit = text;
      Is_Input(row) ? Check_Input_Bit(slot) : Check_Output_Bit(slot);
      break;
    case Invert_Column:
      record.Invert = item(row, column)->checkState() == Qt::Checked;
      break;
    case Name_Column:
      if (const int output = Named_Output(row)) Port_Setup.Text_Output_Name[output] = text;
      break;
    default:
      break;
  }
  Changed();
}

void Pin_Table::Show_Form() {
  const QSignalBlocker quiet(this);
  const bool live = Port_Setup.LPT_Page_Enabled;
  for (int row = 0; row < rowCount(); ++row) {
    const Port_Setup_Row& record = Record_Of(row);
    item(row, Pin_Column)->setText(QString::fromStdString(record.Pin));
    item(row, Port_Column)->setText(QString::fromStdString(record.Port));
    item(row, Bit_Column)->setText(QString::fromStdString(record.Bit));
    Set_Editable(*item(row, Pin_Column), live && Port_Setup.Pins_Enabled);
    Set_Editable(*item(row, Port_Column), live && Port_Setup.Bits_Enabled);
    Set_Editable(*item(row, Bit_Column), live && Port_Setup.Bits_Enabled);
    QTableWidgetItem& invert = *item(row, Invert_Column);
    invert.setCheckState(record.Invert ? Qt::Checked : Qt::Unchecked);
    invert.setFlags(live ? Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable
                         : Qt::ItemFlags(Qt::ItemIsSelectable));
    const int output = Named_Output(row);
    if (output > 0)
      item(row, Name_Column)->setText(QString::fromStdString(Port_Setup.Text_Output_Name[output]));
    Set_Editable(*item(row, Name_Column), output > 0);
  }
  viewport()->update();
}

}  // namespace norvik

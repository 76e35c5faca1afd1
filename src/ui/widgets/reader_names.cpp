#include "ui/widgets/reader_names.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>

namespace norvik {

namespace {

bool Is_Control(const QWidget& widget) {
  return qobject_cast<const QAbstractButton*>(&widget) != nullptr ||
         qobject_cast<const QLineEdit*>(&widget) != nullptr ||
         qobject_cast<const QComboBox*>(&widget) != nullptr ||
         qobject_cast<const QAbstractSpinBox*>(&widget) != nullptr ||
         qobject_cast<const QAbstractSlider*>(&widget) != nullptr ||
         qobject_cast<const QAbstractItemView*>(&widget) != nullptr ||
         qobject_cast<const QPlainTextEdit*>(&widget) != nullptr ||
         qobject_cast<const QTextEdit*>(&widget) != nullptr ||
         (widget.focusPolicy() & Qt::TabFocus) != 0;
}

QString Said(QWidget& widget) {
  const QAccessibleInterface* face = QAccessible::queryAccessibleInterface(&widget);
  return face == nullptr ? QString() : face->text(QAccessible::Name);
}

QString Words_Of(const QLayoutItem* item) {
  if (item == nullptr || item->widget() == nullptr) return {};
  const auto* label = qobject_cast<const QLabel*>(item->widget());
  return label == nullptr ? QString() : label->text().remove('&');
}

// Where the control stands in the layout or in one inside it: the words before it.
QString Label_Before(QLayout& layout, QWidget& widget) {
  for (int i = 0; i < layout.count(); ++i) {
    QLayoutItem* item = layout.itemAt(i);
    if (item->layout() != nullptr) {
      const QString words = Label_Before(*item->layout(), widget);
      if (!words.isEmpty()) return words;
    }
    if (item->widget() != &widget) continue;
    if (auto* grid = qobject_cast<QGridLayout*>(&layout)) {
      int row = 0, column = 0, rows = 0, columns = 0;
      grid->getItemPosition(i, &row, &column, &rows, &columns);
      for (int left = column - 1; left >= 0; --left) {
        const QString words = Words_Of(grid->itemAtPosition(row, left));
        if (!words.isEmpty()) return words;
      }
      return row > 0 ? Words_Of(grid->itemAtPosition(row - 1, column)) : QString();
    }
    if (auto* form = qobject_cast<QFormLayout*>(&layout)) {
      const auto* label = qobject_cast<const QLabel*>(form->labelForField(&widget));
      return label == nullptr ? QString() : label->text().remove('&');
    }
    return i > 0 ? Words_Of(layout.itemAt(i - 1)) : QString();
  }
  return {};
}

QString Name_For(QWidget& widget) {
  QWidget* parent = widget.parentWidget();
  // The line of a box stands for the box.
  const bool inner = qobject_cast<QComboBox*>(parent) != nullptr ||
                     qobject_cast<QAbstractSpinBox*>(parent) != nullptr;
  if (inner)
    return parent->accessibleName().isEmpty() ? Name_For(*parent) : parent->accessibleName();
  if (parent != nullptr && parent->layout() != nullptr) {
    const QString words = Label_Before(*parent->layout(), widget);
    if (!words.isEmpty()) return words;
  }
  if (!widget.toolTip().isEmpty()) return widget.toolTip().section('\n', 0, 0);
  const auto* line = qobject_cast<const QLineEdit*>(&widget);
  if (line != nullptr && !line->placeholderText().isEmpty()) return line->placeholderText();
  for (const QWidget* at = parent; at != nullptr; at = at->parentWidget()) {
    const auto* group = qobject_cast<const QGroupBox*>(at);
    if (group != nullptr && !group->title().isEmpty()) return group->title().remove('&');
    if (!at->windowTitle().isEmpty()) return at->windowTitle();
  }
  return {};
}

class Reader_Names : public QObject {
 public:
  using QObject::QObject;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::Show || !watched->isWidgetType()) return false;
    auto* widget = static_cast<QWidget*>(watched);
    const bool named = !widget->accessibleName().isEmpty() || widget->isWindow();
    if (!named && Is_Control(*widget) && Said(*widget).isEmpty()) {
      widget->setAccessibleName(Name_For(*widget));
    }
    return false;
  }
};

}  // namespace

void Name_Controls_For_Readers(QApplication& application) {
  application.installEventFilter(new Reader_Names(&application));
}

}  // namespace norvik

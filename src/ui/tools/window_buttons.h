// window_buttons.h: the buttons of these windows, a finger high, found by their names.
#pragma once

#include <utility>

#include <QBoxLayout>
#include <QPushButton>

namespace norvik {

QPushButton* Add_Window_Button(QBoxLayout& row, const QString& name, const QString& text,
                               const QString& tip);

// The same with what a click does.
template <class Clicked>
QPushButton* Add_Window_Button(QBoxLayout& row, const QString& name, const QString& text,
                               const QString& tip, Clicked&& clicked) {
  QPushButton* button = Add_Window_Button(row, name, text, tip);
  QObject::connect(button, &QPushButton::clicked, button, std::forward<Clicked>(clicked));
  return button;
}

// Closes the frame in which a tool window stands.
void Close_Frame_Of(QWidget& window);

}  // namespace norvik

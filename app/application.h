#pragma once

#include <QApplication>

/// The program's application object. Whatever the main thread does for an event, such as a command
/// or painting, may fail by an exception without ending the program: it is logged and told as one
/// that ends a thread is.
class Application : public QApplication {
  Q_OBJECT

 public:
  using QApplication::QApplication;

  bool notify(QObject* receiver, QEvent* event) override;
};

#include "app/application.h"

#include "base/detachThread.h"

bool Application::notify(QObject* receiver, QEvent* event) {
  try {
    return QApplication::notify(receiver, event);
  } catch (...) {
    runGuarded("main", [] { throw; });
    return false;
  }
}

// Files that are dropped onto the window.

#include "app/MainWindow.h"
#include "app/TrakkoAppDelegate.h"
#include "base/mainQueue.h"

#include <QDragEnterEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

namespace {

/// The one database file that is dragged; null when it is anything else.
QString databaseIn(const QMimeData* data) {
  const QList<QUrl> urls = data->urls();
  const QString path = urls.size() == 1 ? urls.first().toLocalFile() : QString();
  const bool isDatabase =
      QFileInfo(path).suffix().compare(QStringLiteral("db3"), Qt::CaseInsensitive) == 0;
  return isDatabase ? path : QString();
}

}  // namespace

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (!databaseIn(event->mimeData()).isNull()) {
    event->setDropAction(Qt::CopyAction);  // the file itself stays where it is
    event->accept();
  }
}

void MainWindow::dropEvent(QDropEvent* event) {
  const QString path = databaseIn(event->mimeData());
  if (path.isNull()) {
    return;
  }
  event->setDropAction(Qt::CopyAction);
  event->accept();
  // The program that the file comes from waits until this returns, not until a question is
  // answered.
  // A file that slips from the pointer must not replace the runs.
  mainQueue::post([controller = controller_, path] {
    controller->recoverFrom(path, QStringLiteral("「%1」から復元しますか？\n"
                                                 "今のデータは別のファイルに残ります。")
                                      .arg(path));
  });
}

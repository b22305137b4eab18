#pragma once

#include <QString>
#include <QWebEngineUrlSchemeHandler>

/// Answers what the map page gets from the program itself: the bundled map script and the map
/// images. Main thread.
class MapSchemeHandler : public QWebEngineUrlSchemeHandler {
  Q_OBJECT

 public:
  /// `tileAddress` is the template of the bundled map's tiles.
  MapSchemeHandler(const QString& tileAddress, QObject* parent);

  void requestStarted(QWebEngineUrlRequestJob* job) override;

  QString imageFolder;  ///< Path of the folder with the map images, with its trailing "/".

 private:
  void replyImage(QWebEngineUrlRequestJob* job, const QString& name) const;

  QString tileAddress_;
};

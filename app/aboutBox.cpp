#include "app/aboutBox.h"

#include "app/boxOver.h"

#include <QCoreApplication>
#include <QFile>
#include <QMessageBox>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

/// The licence texts that the packages carry, too.
QString licences() {
  QFile file(u":/about/copyright"_s);
  return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

}  // namespace

void showAbout(QWidget* window) {
  auto* box = new QMessageBox(window);
  box->setWindowTitle(u"Trakko について"_s);
  box->setIconPixmap(window->windowIcon().pixmap(64, 64));
  box->setTextFormat(Qt::RichText);
  box->setText(u"<b>Trakko %1</b>"_s.arg(QCoreApplication::applicationVersion()));
  const QString what = u"GPS ランニングウォッチのデータを管理するアプリケーションです。"_s;
  box->setInformativeText(what +
                          u"<br><br>"
                          "Leaflet: BSD 2-Clause License, Vladimir Agafonkin, CloudMade<br>"
                          "dygraphs: MIT License, Dan Vanderkam<br>"
                          "地図データ: © OpenStreetMap contributors<br>"
                          "Qt %1: GNU LGPL 3"_s.arg(QString::fromLatin1(qVersion())));
  // A line of Japanese breaks anywhere, so none is left to break.
  box->setStyleSheet(u"QLabel#qt_msgbox_informativelabel { min-width: %1px; }"_s.arg(
      box->fontMetrics().horizontalAdvance(what) + 2 * box->fontMetrics().height()));
  box->setDetailedText(licences());
  box->setDefaultButton(box->addButton(u"OK"_s, QMessageBox::AcceptRole));
  box->setAttribute(Qt::WA_DeleteOnClose);
  new BoxOver(box, window);  // the box owns it
  box->show();
}

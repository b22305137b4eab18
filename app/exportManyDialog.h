#pragma once

#include "export/exportMany.h"

#include <QDate>
#include <QDialog>
#include <QString>

#include <utility>

class QComboBox;
class QDateEdit;
class QLayout;
class QLineEdit;
class QPushButton;

/// Asks which runs to export, as what and where to. Main thread.
class ExportManyDialog : public QDialog {
  Q_OBJECT

 public:
  using Days = std::pair<QDate, QDate>;

  /// `offered`: first and last day of the period that is chosen beside the list; invalid when none
  /// is. `folder`: where the choice begins.
  ExportManyDialog(QWidget* parent, const Days& offered, const QString& folder);

  /// First and last day; both invalid when all runs are meant.
  Days days() const;
  ExportFormat format() const;
  QString folder() const;

 private:
  void addPeriod();
  void addFolder(const QString& folder);
  void addRow(const QString& title, QLayout* row, QWidget* buddy);
  void choosePeriod();
  void chooseFolder();
  void enableParts();

  Days offered_;
  QComboBox* period_;
  QDateEdit* first_;
  QDateEdit* last_;
  QComboBox* format_;
  QLineEdit* folder_;
  QPushButton* start_ = nullptr;
};

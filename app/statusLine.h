#pragma once

#include <QString>
#include <QWidget>

class QFontMetrics;
class QLabel;
class QToolButton;

/// What a line at the bottom of the window says about a command.
enum class Verdict { note, progress, done, failure };

/// The line at the bottom of the window: what became of the last command, in one plain sentence
/// with a sign of its verdict before it. A path in 「」 is cut in its middle where the window is
/// too narrow, and its folder opens at the push of a button. Screen readers are told of every
/// change. Main thread.
class StatusLine : public QWidget {
  Q_OBJECT

 public:
  explicit StatusLine(QWidget* parent = nullptr);

  /// Replaces what stood there; "" clears the line.
  void tell(const QString& line, Verdict verdict);
  void setText(const QString& line) { tell(line, Verdict::note); }
  void showProgress(const QString& line) { tell(line, Verdict::progress); }
  void showDone(const QString& line) { tell(line, Verdict::done); }
  void showFailure(const QString& line) { tell(line, Verdict::failure); }

  /// The whole line, however much of it there is room for.
  QString text() const { return text_; }
  Verdict verdict() const { return verdict_; }

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void showSign();
  void showFolder();
  void fit();
  void announce();

  QString text_;
  Verdict verdict_ = Verdict::note;
  QString folder_;  ///< Of the path in the line; empty when there is none.
  QLabel* sign_;
  QLabel* label_;
  QToolButton* open_;
};

/// The line, at most `width` pixels wide: a path in 「」 loses its middle first.
QString elidedLine(const QString& line, const QFontMetrics& metrics, int width);

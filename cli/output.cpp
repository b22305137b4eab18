#include "cli/output.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

QString withoutControls(QString text) {
  std::replace_if(
      text.begin(), text.end(), [](QChar c) { return c.category() == QChar::Other_Control; }, u' ');
  return text;
}

QString csvField(const QString& text) {
  const bool plain = std::none_of(text.begin(), text.end(), [](QChar c) {
    return c == u',' || c == u'"' || c == u'\n' || c == u'\r';
  });
  return plain ? text : u'"' + QString(text).replace(u'"', u"\"\""_s) + u'"';
}

void writeError(const QByteArray& bytes) {
  std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stderr);
  std::fflush(stderr);
}

}  // namespace

void Output::row(const QStringList& fields) {
  QStringList shown;
  std::transform(fields.begin(), fields.end(), std::back_inserter(shown), withoutControls);
  bytes((shown.join(u'\t') + u'\n').toUtf8());
}

void Output::csvRow(const QStringList& fields) {
  QStringList shown;
  std::transform(fields.begin(), fields.end(), std::back_inserter(shown),
                 [](const QString& field) { return csvField(withoutControls(field)); });
  bytes((shown.join(u',') + u'\n').toUtf8());
}

void Output::json(const QJsonDocument& document) {
  bytes(document.toJson());
}

void Output::bytes(const QByteArray& bytes) {
  const auto size = static_cast<std::size_t>(bytes.size());
  if (writeError_ == 0 && std::fwrite(bytes.constData(), 1, size, stdout) != size) {
    writeError_ = errno;
  }
}

void Output::message(const QString& line) {
  endProgress();
  writeError((withoutControls(line) + u'\n').toUtf8());
}

void Output::progress(const QString& line) {
  static const bool terminal = ::isatty(STDERR_FILENO) == 1;
  if (terminal) {
    writeError((u"\r"_s + withoutControls(line) + u"\x1b[K"_s).toUtf8());
    progressShown_ = true;
  }
}

void Output::endProgress() {
  if (progressShown_) {
    writeError("\r\x1b[K");
    progressShown_ = false;
  }
}

ExitCode Output::finish(ExitCode code) {
  endProgress();
  if (std::fflush(stdout) != 0 && writeError_ == 0) {
    writeError_ = errno;
  }
  if (writeError_ == 0) {
    return code;
  }
  message(
      u"標準出力に書き込めません: %1"_s.arg(QString::fromLocal8Bit(std::strerror(writeError_))));
  return code == ExitCode::done ? ExitCode::failed : code;
}

// Makes a large database for the benchmarks, once and outside the repository:
//   make_database FOLDER RUNS POINTS
// 10,000 runs of 2,000 points take some minutes and 2 GB.

#include "bench/sampleRuns.h"

#include <QLoggingCategory>

#include <cstdio>

int main(int argc, char** argv) {
  QLoggingCategory::setFilterRules(QStringLiteral("trakko.*=false"));
  if (argc != 4 || !QDir().mkpath(QFile::decodeName(argv[1]))) {
    (void)std::fputs("make_database FOLDER RUNS POINTS\n", stderr);
    return 2;
  }
  const QString file = useFolder(QFile::decodeName(argv[1]));
  if (QFile::exists(file)) {
    (void)std::fprintf(stderr, "%s is there already\n", qPrintable(file));
    return 1;
  }
  fillStore(QByteArray(argv[2]).toLongLong(), QByteArray(argv[3]).toLongLong());
  return 0;
}

// The INSERT statements of the four kinds of record.

#include "base/text.h"
#include "data/connection.h"
#include "data/dataControl.h"
#include "data/rowValues.h"

QByteArray dataControl::runSqlStr(const runData& run) {
  qCInfo(dataLog).noquote() << text::shown(run.T_RunStartTime);
  return statementOf(runInsertion, run);
}

QByteArray dataControl::lapSqlStr(const lapData& lap) {
  return statementOf(lapInsertion, lap);
}

QByteArray dataControl::trackSqlStr(const trackData& track) {
  return statementOf(trackInsertion, track);
}

QByteArray dataControl::trackPointSqlStr(const trackPointData& point) {
  return statementOf(pointInsertion, point);
}

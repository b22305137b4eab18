#pragma once

#include <QTest>

#include <type_traits>

/// The columns of a test's table, and what adds a row to it:
///
///   const auto row = columns<QString, int>("text", "number");
///   row("nothing", "", 0);
template <typename... Types, typename... Names>
auto columns(Names... names) {
  (QTest::addColumn<Types>(names), ...);
  return [](const QByteArray& name, const std::type_identity_t<Types>&... values) {
    (QTest::newRow(name.constData()) << ... << values);
  };
}

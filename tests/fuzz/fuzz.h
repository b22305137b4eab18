#pragma once

#include <QLoggingCategory>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

inline void quiet() {
  [[maybe_unused]] static const bool done = [] {
    QLoggingCategory::setFilterRules(QStringLiteral("*=false"));
    return true;
  }();
}

/// Ends the program when what must hold does not.
inline void require(bool holds) {
  if (!holds) {
    std::abort();
  }
}

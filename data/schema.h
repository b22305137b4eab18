#pragma once

#include <array>

/// The statements that create the tables of runs, laps, tracks and track points, in this order.
/// They change nothing where the tables are there. Readers address the columns by position, `ID`
/// being column 0, so the order of the columns is part of the file format.
extern const std::array<const char*, 4> createTables;

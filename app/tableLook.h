#pragma once

#include <QStringList>

class ColumnFitter;
class QTableView;

/// Gives a table with its model the look of all tables of the window: whole rows, one at a time,
/// with a header that breaks its titles and columns that fit. `widestTexts` as for ColumnFitter.
ColumnFitter* dressTable(QTableView* table, const QStringList& widestTexts);

/// The pixels that the table takes to show so many rows.
int heightFor(const QTableView* table, int rows);

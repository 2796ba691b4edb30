// SPDX-License-Identifier: BSD-3-Clause
#pragma once

class DatabaseWriter;
class QString;

/// Fills a database from a folder with a file for each table: stocks.csv, boards.csv,
/// securities.csv, gx.diler.csv and sessions.csv. The first row of a file names all columns of the
/// schema, in any order. An empty cell is NULL. Throws Exception with a text "file:line:column:
/// reason".
void importCsv(const QString &folder, DatabaseWriter &writer);

// SPDX-License-Identifier: BSD-3-Clause
#pragma once

class DatabaseWriter;
class QString;

/// Fills a database from a folder with one file a table: stocks.csv, boards.csv,
/// securities.csv, gx.diler.csv and sessions.csv. The first row of each names the columns, all
/// of the schema's in any order; an empty cell is NULL. Throws Exception with a text
/// "file:line:column: reason".
void importCsv(const QString &folder, DatabaseWriter &writer);

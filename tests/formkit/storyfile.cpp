// SPDX-License-Identifier: BSD-3-Clause
#include "storyfile.h"

StoryFile::StoryFile(const QString &name)
{
    for (const DataRow &row : rowsOf("stories/" + name + ".txt")) {
        const QString &about = row.first();
        if (about == "make")
            controls << row.mid(1);
        else if (about == "labels")
            for (const QString &pair : row.mid(1))
                labels[pair.section('=', 0, 0)] = pair.section('=', 1);
        else if (about == "hears")
            reports[row[1].toLatin1()] = row[2];
        else if (about == "sessions")
            sessions << SessionId{row[1].toInt(), row[2].toInt()};
        else if (about == "row" || about == "later") {
            QVariantList cells;
            for (const QString &cell : row.mid(3))
                cells << (cell.isEmpty() ? QVariant() : QVariant(cell));
            rows[row[1]][row[2]] = cells;
            if (about == "row")
                offeredAtStart[row[1]] << cells;
        } else if (about.at(0).isUpper()) {
            stories << row;
        }
    }
}

// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/indexsort.h>

/// The rows of the gateway's partner table "gx.diler", sorted by partner code: case-sensitive,
/// empty codes first.
class PartnersIndex : public IndexSort
{
public:
    PartnersIndex();

    int codeColumn() const { return m_codeColumn; }
    int nameColumn() const { return m_nameColumn; }
    int clientCodeColumn() const { return m_clientCodeColumn; }

protected:
    bool filter(const Record &record) const override;
    int compare(const Record &a, const Record &b) const override;

private:
    int m_codeColumn;
    int m_nameColumn;
    int m_clientCodeColumn;
};

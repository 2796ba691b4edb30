// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/record.h>

#include <memory>

/// A condition on the rows of a table.
class HOSTAPI_EXPORT ValueFilter
{
public:
    virtual ~ValueFilter();

    /// True for a row that meets the condition.
    virtual bool filter(const Record &record) const = 0;
    virtual std::unique_ptr<ValueFilter> clone() const = 0;
};

// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/decimal.h>

/// By how much the numbers of an order may change: the least change of the price, and the quantity
/// of one lot. Zero for what a host does not know.
struct TradingSteps
{
    decimal price;
    decimal lot;
};

/// The steps in which securities are traded. Look-ups may come from any thread and inside a walk of
/// any table: a host must answer them without waiting for a table's lock.
class HOSTAPI_EXPORT StepSource
{
public:
    virtual ~StepSource();
    /// That of the installed core; never null.
    static const StepSource *i();

    /// The steps of a security of a board of an exchange; zeros for an unknown one.
    virtual TradingSteps stepsOf(int stockId, int boardId, qint64 securityId) const = 0;
};

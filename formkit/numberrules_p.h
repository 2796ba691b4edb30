// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <hostapi/decimal.h>

#include <functional>
#include <optional>

/// The settings of a NumberEntry.
struct NumberRules
{
    /// A number in the text that it was given as; none if it is no number.
    struct Given
    {
        QString text;
        std::optional<decimal> number;
    };

    /// Less than, equal to or greater than 0: below the limits, within them, above them.
    int sideOf(const decimal &number) const
    {
        if (minimum.number && number < *minimum.number)
            return -1;
        return maximum.number && number > *maximum.number ? 1 : 0;
    }
    bool hasUnit() const { return !prefix.isEmpty() || !suffix.isEmpty(); }

    Given step; ///< without zeros at the end of the fraction
    Given minimum;
    Given maximum;
    bool wheelSteps = false;
    bool multipliers = false;
    bool signToggle = false;
    QString prefix;
    QString suffix;
    std::function<void()> changed; ///< called after each change
};

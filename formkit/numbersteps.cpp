// SPDX-License-Identifier: BSD-3-Clause
#include "numbersteps_p.h"

#include <hostapi/exception.h>

#include <limits>

namespace {

// The multiples of a step, by their numbers. What does not fit into a decimal throws.
class Grid
{
public:
    Grid(decimal step, short scale) : m_scale(scale)
    {
        step.setScale(scale);
        m_step = step.word();
    }

    /// The last multiple that is not above the number, and the first that is not below it.
    qint64 below(const decimal &number) const
    {
        const qint64 word = wordOf(number, -1);
        return word / m_step - int(word % m_step < 0);
    }
    qint64 above(const decimal &number) const
    {
        const qint64 word = wordOf(number, 1);
        return word / m_step + int(word % m_step > 0);
    }
    decimal at(qint64 index) const
    {
        using Words = std::numeric_limits<qint64>;
        if (index > Words::max() / m_step || index < Words::min() / m_step)
            throw Exception(QStringLiteral("Decimal overflow."));
        return decimal(index * m_step, m_scale);
    }

private:
    // At the scale of the grid, rounded down (-1) or up (1).
    qint64 wordOf(const decimal &number, int way) const
    {
        decimal rounded = number;
        rounded.setScale(m_scale);
        return rounded.word() + (rounded.compare(number) == -way ? way : 0);
    }

    short m_scale;
    qint64 m_step = 1;
};

} // namespace

std::optional<decimal> stepped(const std::optional<decimal> &from, int count,
                               const NumberRules &rules, int digits)
{
    const decimal &step = *rules.step.number;
    const decimal start = from.value_or(decimal::zero);
    const std::optional<decimal> &minimum = rules.minimum.number;
    const std::optional<decimal> &maximum = rules.maximum.number;
    const bool isUp = count > 0;
    try {
        const Grid grid(step, qMax(start.scale(), step.scale()));
        decimal to = grid.at((isUp ? grid.below(start) : grid.above(start)) + count);
        if (minimum && to < *minimum && (!isUp || !from))
            to = grid.at(grid.above(*minimum));
        if (maximum && to > *maximum && (isUp || !from))
            to = grid.at(grid.below(*maximum));
        if (from && (isUp ? to <= start : to >= start))
            return {};
        to.setScale(qMax(step.scale(), qMin(start.scale(), short(qMax(digits, 0)))));
        return to;
    } catch (const Exception &) {
        return {};
    }
}

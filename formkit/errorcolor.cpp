// SPDX-License-Identifier: BSD-3-Clause
#include "errorcolor_p.h"

#include <cmath>

namespace {

constexpr qreal LeastContrast = 4.5;
// From pure red to white or black, one of which stands out from any ground.
constexpr int Steps = 20;

// Of one part of a colour, as the Web Content Accessibility Guidelines count.
qreal linear(qreal part)
{
    return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
}

qreal luminance(const QColor &color)
{
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

QColor mixed(const QColor &one, const QColor &other, qreal part)
{
    const auto mix = [part](qreal a, qreal b) { return a + (b - a) * part; };
    return QColor::fromRgbF(mix(one.redF(), other.redF()), mix(one.greenF(), other.greenF()),
                            mix(one.blueF(), other.blueF()));
}

} // namespace

qreal contrastOf(const QColor &one, const QColor &other)
{
    const qreal a = luminance(one);
    const qreal b = luminance(other);
    return (qMax(a, b) + 0.05) / (qMin(a, b) + 0.05);
}

QColor errorColor(const QPalette &palette, QPalette::ColorRole ground)
{
    const QColor base = palette.color(ground);
    const QColor white(Qt::white);
    const QColor black(Qt::black);
    const QColor far = contrastOf(base, white) > contrastOf(base, black) ? white : black;
    QColor color(Qt::red);
    for (int step = 1; contrastOf(color, base) < LeastContrast && step <= Steps; ++step)
        color = mixed(Qt::red, far, qreal(step) / Steps);
    return color;
}

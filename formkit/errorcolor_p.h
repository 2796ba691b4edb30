// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QPalette>

/// The colour of what is wrong: a red that stands out from a ground of the palette, light or dark,
/// by a contrast of at least 4.5 to 1.
QColor errorColor(const QPalette &palette, QPalette::ColorRole ground = QPalette::Base);
/// How far two colours stand apart: 1 for the same, 21 for black and white.
qreal contrastOf(const QColor &one, const QColor &other);

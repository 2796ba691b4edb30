// SPDX-License-Identifier: BSD-3-Clause
#pragma once

class QWidget;

/// Where a field of a form stands: on pages, of which one is shown, and in scrolled areas.
namespace FormPages {

/// Whether the user can come to the field and change it: it is enabled, and not hidden but by the
/// page that it stands on.
bool canBeReached(const QWidget *field, const QWidget *form);
/// Shows the pages and the part of the areas in which the field stands.
void open(QWidget *field, QWidget *form);

} // namespace FormPages

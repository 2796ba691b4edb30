// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QWidget>

/// How every test of widgets sends keys.
namespace keys {

/// Presses keys in turn, "Ctrl+A Home F4". What is open (a list, a calendar) gets them instead of
/// the widget, as a user's would.
void press(QWidget *widget, const QString &keys);

/// Types a text in any script into the widget. QTest::keyClicks() knows Latin characters only.
void type(QWidget *widget, const QString &text);

} // namespace keys

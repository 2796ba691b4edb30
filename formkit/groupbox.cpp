// SPDX-License-Identifier: BSD-3-Clause
#include "groupbox.h"

GroupBox::GroupBox(QWidget *parent) : QGroupBox(parent) {}

void GroupBox::prop_Value_changed(const QString &) {}

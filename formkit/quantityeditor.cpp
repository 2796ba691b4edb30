// SPDX-License-Identifier: BSD-3-Clause
#include "quantityeditor.h"

QuantityEditor::QuantityEditor(QWidget *parent) : NumberEditor(parent, 0)
{
    setCanNegative(false);
}

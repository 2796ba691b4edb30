// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/numbereditor.h>

/// A NumberEditor for whole quantities: no fraction digits and no minus. Zero is allowed.
class FORMKIT_EXPORT QuantityEditor : public NumberEditor
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "super")

public:
    explicit QuantityEditor(QWidget *parent = nullptr);
};

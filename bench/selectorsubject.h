// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/securityselectormodel.h>

#include <memory>

class QComboBox;

/// A box to be measured: the selector box, or Qt's own classes put together as one. It has the
/// operations that the two have different names for.
class Subject
{
public:
    using Role = SecuritySelectorModel::ItemDataRole;

    virtual ~Subject() = default;
    virtual QComboBox *box() = 0;
    virtual SecuritySelectorModel *source() = 0;
    virtual void setBoard(const QString &stockCode, const QString &boardCode) = 0;
    virtual void choose(Role role, const QString &key) = 0;
};

/// The side is "ours" or "stock"; see measureSelector().
std::unique_ptr<Subject> makeSubject(const QString &side);

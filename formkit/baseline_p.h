// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "programvalues_p.h"

/// The values that a form began with, which tell what has changed in it: see
/// Properties::setBaseline().
class Baseline
{
public:
    /// `forms` outlives this, and tells which texts are the same value.
    explicit Baseline(const ProgramValues &forms) : m_forms(forms) {}

    void set(const Values &values) { m_values = values; }
    /// A property has brought a name that the hub did not hold.
    void seed(const QString &name, const QString &content);
    /// A property has changed, but not by the user. If the value was that of the baseline, the
    /// content becomes it, provided that it is the same in another form (which only the answer to a
    /// write can be), or that there was nothing and the program is not setting values.
    void follow(const QString &name, const QString &before, const QString &content, bool isAnswer);

    bool isChanged(const QString &name, const Values &held) const;
    QStringList changedNames(const Values &held) const;
    /// What brings a hub that holds these values back: each name with its value then.
    Values valuesFor(const Values &held) const;
    QString value(const QString &name) const { return m_values[name]; }

private:
    const ProgramValues &m_forms;
    Values m_values;
};

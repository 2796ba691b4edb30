// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkitstate_export.h>

#include <QState>

/// A state that traces a dialog's state machine: each time it is entered or left it writes a
/// debug line in the logging category "QGuiLog", such as
///     Entering state:  OrderDialog :: Open->Editing
/// made of the prefix and of the state's path. Switched off with the category
/// ("QGuiLog.debug=false"), it is a plain state.
class FORMKITSTATE_EXPORT State : public QState
{
    Q_OBJECT

public:
    /// The object name is the name; the prefix is empty.
    explicit State(const QString &name, QState *parent = nullptr);
    State(const QString &name, QState::ChildMode mode, QState *parent = nullptr);
    /// The prefix stands first; the object name is prefix + "::" + name.
    State(const QString &prefix, const QString &name, QState *parent = nullptr);
    State(const QString &prefix, const QString &name, QState::ChildMode mode,
          QState *parent = nullptr);

    /// The names from the outermost of the enclosing States down to this one, joined by "->".
    /// A state of another class ends the path.
    QString fullName() const;

public Q_SLOTS:
    /// Change what is traced. The object name stays.
    void setName(const QString &name);
    void setPrefix(const QString &prefix);

protected:
    void onEntry(QEvent *event) override;
    void onExit(QEvent *event) override;

private:
    QString m_name;
    QString m_prefix;
};

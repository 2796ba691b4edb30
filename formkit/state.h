// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkitstate_export.h>

#include <QState>

/// A state of a state machine that writes a debug line in the logging category "QGuiLog" each time
/// it is entered or left, such as
///     Entering state:  OrderDialog :: Open->Editing
/// with the prefix and the path of the state. The category turns that off ("QGuiLog.debug=false").
class FORMKITSTATE_EXPORT State : public QState
{
    Q_OBJECT

public:
    /// The object name is the name; the prefix is empty.
    explicit State(const QString &name, QState *parent = nullptr);
    State(const QString &name, QState::ChildMode mode, QState *parent = nullptr);
    /// The prefix comes first. The object name is prefix + "::" + name.
    State(const QString &prefix, const QString &name, QState *parent = nullptr);
    State(const QString &prefix, const QString &name, QState::ChildMode mode,
          QState *parent = nullptr);

    /// The names from the outermost of the enclosing States down to this one, joined by "->".
    /// A state of another class ends the path.
    QString fullName() const;

public Q_SLOTS:
    /// Change the name and the prefix in the debug lines. The object name stays.
    void setName(const QString &name);
    void setPrefix(const QString &prefix);

protected:
    void onEntry(QEvent *event) override;
    void onExit(QEvent *event) override;

private:
    QString m_name;
    QString m_prefix;
};

// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/values.h>

#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>

class Properties;
class QWidget;

/// Judges the values of a form by rules, and shows on each field what is wrong with it: by a red
/// caption, a sign, a line where the form has room, and to assistive technology. docs/rules.md has
/// the rules of form files, and when fields are judged.
///
/// - What a control itself knows counts without a rule: text that is no value, a number outside its
///   limits, an id that waits. So does what Properties::unshown() names.
/// - The field of a name is the first widget of the form whose own value it is (see
///   Properties::objects()). One that is disabled, hidden by the program, or on a sub-form that is
///   not shown is not judged; one on another tab or page is.
/// - The captions of the form belong to this class: use no FormValidation beside it.
class FORMKIT_EXPORT FormRules : public QObject
{
    Q_OBJECT

public:
    /// Judges the hub's values, whose fields are in the form. Call it after connectAll(). Belongs
    /// to the form; does nothing any more when the hub is gone.
    FormRules(Properties *hub, QWidget *form);
    ~FormRules() override;

    /// Rules for a name. A message that is not empty replaces the text.
    void require(const QString &name, const QString &message = {});
    /// A number or a date within limits, in system form; an empty limit is none. Dates may be
    /// limited by "today" and "today+30".
    void range(const QString &name, const QString &least, const QString &most,
               const QString &message = {});
    void oneOf(const QString &name, const QStringList &values, const QString &message = {});
    /// The whole value matches a regular expression.
    void matches(const QString &name, const QString &pattern, const QString &message = {});
    /// Reads the values and answers with the reason why the first of the names is wrong, or with
    /// nothing. The names are those that it reads.
    using Judge = std::function<QString(const Values &values)>;
    void add(const QStringList &names, const Judge &judge);

    /// Judges and marks all fields. If any is wrong, says so to assistive technology, opens the
    /// page of the first one in the tab order and gives it the focus. True when none is.
    bool check();
    /// Whether nothing is wrong, whatever is marked.
    bool isValid() const;
    /// The reason for each name that is wrong, whether it is marked or not.
    QMap<QString, QString> errors() const;
    /// The first error in the tab order, with its caption: "Price: At most 100".
    QString firstError() const;

    /// Whether fields that differ from the hub's baseline bear a small dot. They do not at first,
    /// unless the form has the dynamic property "marksChanges", true.
    bool marksChanges() const;
    void setMarksChanges(bool marks);

Q_SIGNALS:
    /// errors() answers something else than when it was last judged: after a change in the hub or
    /// in the text of a field, when a field is left, and at check().
    void changed();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "countingcontrol.h"

#include <formkit/combobox.h>
#include <formkit/formrules.h>
#include <formkit/formvalidation.h>
#include <formkit/properties.h>

#include <support/datafile.h>
#include <support/testhost.h>

#include <QAbstractItemView>
#include <QLineEdit>

/// A file of stories, as README.md explains it: first the form and its host, then the stories.
struct StoryFile
{
    /// Reads stories/NAME.txt.
    explicit StoryFile(const QString &name);

    QList<QStringList> controls;                         ///< class, name, properties
    QMap<QString, QMap<QString, QVariantList>> rows;     ///< by table and nickname
    QMap<QString, QVector<QVariantList>> offeredAtStart; ///< by table
    QVector<SessionId> sessions;
    QMap<QByteArray, QString> reports; ///< what a signal is called, by its name
    QMap<QString, QString> labels;     ///< what is meant, by the name that stories have for it
    QList<DataRow> stories;
};

/// The form of a file of stories, shown, with the rows that its host has and one control in use.
/// All controls are bound to one hub, unless there is only one, with or without captions.
class StoryForm : public QObject
{
    Q_OBJECT

public:
    StoryForm(TestHost *host, const QString &fileName);

    /// A control, or an object, of a class that a story may name; null for any other class.
    static QObject *create(const QString &className, QWidget *form);
    /// Makes a control from its class, its name and properties, "field=Price". A QWidget is a page
    /// of the form's FormSelector, and what follows stands on that page.
    void make(const QStringList &words);
    /// Takes a control in use and gives it the focus.
    void use(const QString &name);
    /// Moves the focus to a line edit behind the form's own controls.
    void leave();
    /// "list", where the box's is open, "next" for the line edit of leave(), else "box".
    QString focus() const;
    /// True when somebody took the wheel's turn.
    bool turnWheel(int angle) const;

    template <typename Object = QWidget> Object *find(const QString &name) const
    {
        return window.findChild<Object *>(name);
    }
    QWidget *control(const QString &name) const { return find(name); }
    ComboBox *box() const { return qobject_cast<ComboBox *>(current.data()); }
    /// The line edit in use.
    QLineEdit *edit() const;
    QAbstractItemView *completions() const;
    /// The list that is open, or the completions.
    QAbstractItemView *list() const;
    /// The model behind the box's proxy, or its model; null for no box.
    QAbstractItemModel *source() const;
    /// The role that tells a list's rows apart.
    static int roleOfId(const ComboBox *box);
    /// The object that has a property, whose path is cut down to its name: "price.text",
    /// "edit.text", "form.visible", or one of the control in use or its line edit; null for none.
    QObject *owner(QString *path) const;
    /// A property as a text.
    QString property(const QString &path) const;

    Properties *hub() const { return m_hub.get(); }
    void destroyHub() { m_hub.reset(); }
    QString held(const QString &name) const { return m_hub->values()[name]; }

    const StoryFile file;
    TestHost *const host;
    FormValidation validation;
    QWidget window;
    QPointer<FormRules> rules;   ///< null before they are made
    QPointer<QWidget> current;   ///< the control in use
    QString log;                 ///< what was reported, each with a blank in front
    bool populatesLater = false; ///< lists of securities, each waited for
    int turns = 0;               ///< turns of the event loop in which the hub reported changes
    QString states;              ///< what the hub's changedStateChanged() told
    QString wheel;               ///< what became of its last turn

private Q_SLOTS:
    void note(const QString &text = {});

private:
    QWidget *m_place = &window; ///< where controls are made
    QLineEdit *m_next = nullptr;
    std::unique_ptr<Properties> m_hub = std::make_unique<Properties>();
};

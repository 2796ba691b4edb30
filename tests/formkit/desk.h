#pragma once

#include <formkit/combobox.h>
#include <formkit/formvalidation.h>
#include <formkit/properties.h>

#include <support/datafile.h>
#include <support/testhost.h>

#include <QAbstractItemView>
#include <QLineEdit>

// The simplest bindable control, which counts what the hub writes into it and who listens to it.
// With the property "letters" (upper or lower) it answers in a form of its own.
class Probe : public QWidget
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "this")
    Q_PROPERTY(QString Value READ getValue WRITE setValue NOTIFY changed USER true)
    Q_PROPERTY(QString Plain MEMBER plain)
    Q_PROPERTY(QString Fixed READ objectName)

public:
    using QWidget::QWidget;

    QString getValue() const { return onRead ? onRead() : value; }
    void setValue(const QString &text);
    // As a user would.
    void enter(const QString &text);
    // The value, the writes since the last call, and how many listen.
    QString state();
    QString listeners() const { return QString::number(receivers(SIGNAL(changed()))); }

    std::function<void()> onWrite; // what else it does then
    std::function<QString()> onRead;

signals:
    void changed();

private:
    QString value, plain;
    int m_writes = 0;
};

// A form of controls and one who uses it, as a file in stories/ tells it. The file begins with
//     make      a control's class, its name, and properties; the first is in use; all are
//               tied by a hub, but for one that is alone with its caption; a QWidget is a page of
//               the FormSelector before it, and what follows is on that page
//     row       a table, a nickname and the cells of a row that the host has from the start
//     later     the same of a row that is there to be offered
//     sessions  the open ones, exchange and session
//     hears     a signal, and what it is called where a story tells what was reported
//     shows     what the expectation of that name is made of: text, row, caret, properties
// and goes on with stories: a name, and under it, each on a line of its own behind a tab,
//     given     steps, parted by "; ", with which a turn of the event loop ends
//     when      steps, every report of which counts
//     reports   what was reported; a step that no such line follows must report nothing
//     lit       row in the open list|completion of how many|where the focus is
//     Value     or any other property of the control in use, of its line edit, or of another
//               control ("buy.checked")
//     and more expectations: see learnAnswers().
class Desk : public QObject
{
    Q_OBJECT

public:
    Desk(TestHost *host, const QString &story);
    static QList<DataRow> storiesOf(const QString &name);
    // A control by its class; null for an unknown one.
    static QObject *create(const QString &className, QWidget *form);

    void play(const DataRow &story);

    QWidget *control(const QString &name) const { return m_form.findChild<QWidget *>(name); }
    ComboBox *box(const QString &name) const { return m_form.findChild<ComboBox *>(name); }
    ComboBox *box() const { return qobject_cast<ComboBox *>(m_control.data()); }
    QAbstractItemView *completions() const;
    // The model behind the box's proxy, or its model; null for no box.
    QAbstractItemModel *source() const;
    // The role that tells a list's rows apart.
    static int roleOfId(const ComboBox *box);
    // What the hub holds under a name.
    QString held(const QString &name) const { return m_hub->values()[name]; }
    Properties *hub() const { return m_hub.get(); }

    // Does a step ("press F4 Down").
    void act(const QString &step);
    // Answers an expectation ("shows"), which may name what it is about.
    QString answer(const QString &verb, const QString &about = {}) const;

private slots:
    void note(const QString &text);

private:
    void build(const QString &file);
    void make(const QStringList &words);
    void learnHandling();
    void learnHubSteps();
    void learnHostSteps();
    void learnModelSteps();
    void learnAnswers();
    void sendKey(int key, const QString &text) const;
    bool turnWheel(int angle) const;
    QObject *owner(QString *property) const;
    QString property(const QString &path) const;
    QString column(const QAbstractItemModel *model, int role) const;
    QAbstractItemView *list() const;
    QLineEdit *edit() const;

    TestHost *m_host;
    QMap<QString, QMap<QString, QVariantList>> m_known; // rows by table and nickname
    QMap<QString, std::function<void(const QString &words)>> m_steps;
    QMap<QString, std::function<QString(const QString &about)>> m_answers;
    QMap<QByteArray, QString> m_reports; // names by signal
    QStringList m_shows;
    QString m_log;
    int m_turns = 0; // in which the hub reported changes
    QWidget m_form;
    QWidget *m_place = &m_form; // where controls are made
    QLineEdit *m_next = nullptr;
    QPointer<QWidget> m_control;
    std::unique_ptr<Properties> m_hub = std::make_unique<Properties>();
    FormValidation m_validation;
};

#pragma once

#include <formkit/combobox.h>
#include <formkit/properties.h>

#include <support/datafile.h>
#include <support/testhost.h>

#include <QAbstractItemView>
#include <QLineEdit>

// A form of selector boxes and one who uses them, as a data file tells it. The file begins with
//     boxes     the kinds of box, tied by a hub if there are more; the first is in use
//     row       a table, a nickname and the cells of a row that the host has from the start
//     later     the same of a row that is there to be offered
//     sessions  the open ones, exchange and session
// and goes on with stories: a name, and under it, each on a line of its own behind a tab,
//     given     steps, parted by "; "
//     when      steps, every report of which counts
//     reports   what was reported; a step that no such line follows must report nothing
//     shows     text|properties of that kind of box|current row|caret
//     lit       row in the open list|completion of how many|where the focus is
//     and more expectations: see learnAnswers().
class SelectorDesk : public QObject
{
    Q_OBJECT

public:
    SelectorDesk(TestHost *host, const QString &file);
    static QList<DataRow> storiesOf(const QString &file);

    void play(const DataRow &story);

    ComboBox *box(const QString &kind) const { return m_form.findChild<ComboBox *>(kind); }
    ComboBox *box() const { return m_box; }
    QAbstractItemView *completions() const;
    QAbstractItemModel *source() const;
    QWidget *form() { return &m_form; }
    Properties &hub() { return m_hub; }

    // Does a step ("press F4 Down").
    void act(const QString &step);
    // Answers an expectation ("shows"), which may name what it is about.
    QString answer(const QString &verb, const QString &about = {}) const;
    QString takeReports();

private slots:
    void note(const QString &text);

private:
    void fillHost(const QString &file);
    void makeBoxes(const QStringList &kinds);
    void learnHandling();
    void learnHostSteps();
    void learnModelSteps();
    void learnAnswers();
    void press(int key);
    void checkChoice() const;
    QString column(const QAbstractItemModel *model, int column, int role) const;

    TestHost *m_host;
    QMap<QString, QMap<QString, QVariantList>> m_known; // rows by table and nickname
    QMap<QString, std::function<void(const QString &words)>> m_steps;
    QMap<QString, std::function<QString(const QString &about)>> m_answers;
    QString m_log;
    QWidget m_form;
    QLineEdit *m_next = nullptr;
    ComboBox *m_box = nullptr;
    Properties m_hub;
};

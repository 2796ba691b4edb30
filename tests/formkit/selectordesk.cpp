#include "selectordesk.h"

#include <formkit/boardselectorbox.h>
#include <formkit/boardselectormodel.h>
#include <formkit/partnerselectorbox.h>
#include <formkit/securityselectorbox.h>
#include <formkit/securityselectormodel.h>
#include <formkit/stockselectorbox.h>
#include <formkit/stockselectorbox_code.h>
#include <formkit/stockselectormodel.h>

#include <QAbstractItemModelTester>
#include <QAbstractProxyModel>
#include <QApplication>
#include <QCompleter>
#include <QVBoxLayout>

namespace {

struct Kind
{
    ComboBox *(*make)(QWidget *form);
    QVector<QByteArray> properties;
    // Where the model has what tells its rows apart.
    int idRole;
    int idColumn;
};

template <typename Box> ComboBox *make(QWidget *form)
{
    return new Box(form);
}

const Kind stock = {make<StockSelectorBox>, {"StockId", "StockCode"}, Qt::UserRole + 1, 0};
const QMap<QString, Kind> kinds = {
    {"stock", stock},
    {"twin", stock},
    {"codes", {make<StockSelectorBox_Code>, {}, Qt::UserRole, 0}},
    {"board", {make<BoardSelectorBox>, {"BoardId", "BoardCode"}, Qt::UserRole + 1, 0}},
    {"security",
     {make<SecuritySelectorBox>,
      {"SecurityId", "Security", "SecurityName"},
      SecuritySelectorModel::SecurityIdRole,
      0}},
    {"partner", {make<PartnerSelectorBox>, {"Partner", "PartnerName"}, Qt::DisplayRole, 2}}};

// What the signals are called in a story.
const QMap<QByteArray, QString> reports = {
    {"stockIdChanged", "id"},        {"stockCodeChanged", "code"},  {"stockChanged", "text"},
    {"setProp_StockId", "id"},       {"setProp_StockCode", "code"}, {"setProp_Stock", "text"},
    {"boardIdChanged", "id"},        {"boardCodeChanged", "code"},  {"boardChanged", "text"},
    {"securityIdChanged", "id"},     {"securityChanged", "code"},   {"changedPartner", "partner"},
    {"securityNameChanged", "name"}, {"changedPartnerName", "name"}};

const QStringList worldWords = {"boxes", "row", "later", "sessions"};

QString word(const QString &words, int place)
{
    return words.section(' ', place, place);
}

template <typename Model> bool populated(QAbstractItemModel *source)
{
    auto *const model = qobject_cast<Model *>(source);
    if (model)
        model->populate();
    return model;
}

QAbstractItemModel *sourceOf(const ComboBox *box)
{
    auto *const proxy = qobject_cast<QAbstractProxyModel *>(box->model());
    return proxy ? proxy->sourceModel() : box->model();
}

void populate(ComboBox *box)
{
    QAbstractItemModel *const source = sourceOf(box);
    if (auto *const codes = qobject_cast<StockSelectorBox_Code *>(box))
        codes->populate();
    else if (auto *const partners = qobject_cast<PartnerSelectorBox *>(box))
        partners->populate();
    else
        QVERIFY(populated<StockSelectorModel>(source) || populated<BoardSelectorModel>(source) ||
                populated<SecuritySelectorModel>(source));
}

void changeModel(ComboBox *box, const QString &how)
{
    const bool isNone = how == "none";
    if (auto *const stocks = qobject_cast<StockSelectorBox *>(box))
        stocks->setSourceModel(isNone ? nullptr : new StockSelectorModel);
    if (auto *const boards = qobject_cast<BoardSelectorBox *>(box))
        boards->setSourceModel(isNone ? nullptr : new BoardSelectorModel);
    if (auto *const securities = qobject_cast<SecuritySelectorBox *>(box))
        securities->setSourceModel(isNone ? nullptr : new SecuritySelectorModel);
}

} // namespace

SelectorDesk::SelectorDesk(TestHost *host, const QString &file) : m_host(host)
{
    learnHandling();
    learnHostSteps();
    learnModelSteps();
    learnAnswers();
    fillHost(file);
}

QList<DataRow> SelectorDesk::storiesOf(const QString &file)
{
    QList<DataRow> rows = rowsOf(file);
    while (!rows.isEmpty() && worldWords.contains(rows.first().first()))
        rows.removeFirst();
    return rows;
}

void SelectorDesk::fillHost(const QString &file)
{
    QMap<QString, QVector<QVariantList>> offered;
    QVector<SessionId> sessions;
    QStringList boxes;
    for (const DataRow &row : rowsOf(file)) {
        const QString about = row.first();
        if (about == "boxes")
            boxes = row.mid(1);
        if (about == "sessions")
            sessions << SessionId{row[1].toInt(), row[2].toInt()};
        if (about != "row" && about != "later")
            continue;
        QVariantList cells;
        for (const QString &cell : row.mid(3))
            cells << (cell.isEmpty() ? QVariant() : QVariant(cell));
        m_known[row[1]][row[2]] = cells;
        if (about == "row")
            offered[row[1]] << cells;
    }
    for (auto table = offered.cbegin(); table != offered.cend(); ++table)
        m_host->table(table.key()).setRows(*table);
    m_host->setSessions(sessions);
    makeBoxes(boxes);
}

void SelectorDesk::makeBoxes(const QStringList &boxes)
{
    auto *const layout = new QVBoxLayout(&m_form);
    for (const QString &kind : boxes) {
        ComboBox *const box = kinds[kind].make(&m_form);
        box->setObjectName(kind);
        for (const QByteArray &name : reports.keys()) {
            if (box->metaObject()->indexOfSignal(name + "(QString)") >= 0)
                connect(box, '2' + name + "(QString)", this, SLOT(note(QString)));
        }
        layout->addWidget(box);
    }
    layout->addWidget(m_next = new QLineEdit);
    if (boxes.size() > 1)
        m_hub.connectAll(&m_form);
    m_form.show();
    QVERIFY(QTest::qWaitForWindowActive(&m_form));
    act("at " + boxes.first());
    m_log.clear();
}

void SelectorDesk::note(const QString &text)
{
    const QByteArray signal = sender()->metaObject()->method(senderSignalIndex()).name();
    m_log += ' ' + reports[signal] + '=' + text;
}

void SelectorDesk::learnHandling()
{
    m_steps["at"] = [this](const QString &kind) {
        m_box = box(kind);
        m_box->setFocus();
    };
    m_steps["set"] = [=](const QString &words) {
        const QByteArray name = word(words, 0).toLatin1();
        const QString value = words.section(' ', 1);
        if (m_box->metaObject()->indexOfProperty(name) >= 0)
            m_box->setProperty(name, value);
        else
            QVERIFY(QMetaObject::invokeMethod(m_box, name, Q_ARG(QString, value)));
    };
    m_steps["hub"] = [this](const QString &words) {
        m_hub.setValue(words.section(' ', 0, 0), words.section(' ', 1));
    };
    m_steps["type"] = [this](const QString &keys) { QTest::keyClicks(m_box, keys); };
    m_steps["press"] = [this](const QString &keys) {
        for (const QString &key : keys.split(' '))
            press(QKeySequence(key)[0]);
    };
    m_steps["edit"] = [this](const QString &text) { m_box->setEditText(text); };
    m_steps["caret"] = [this](const QString &place) {
        m_box->lineEdit()->setCursorPosition(place.toInt());
    };
    m_steps["select"] = [=](const QString &words) {
        m_box->lineEdit()->setSelection(word(words, 0).toInt(), word(words, 1).toInt());
    };
    m_steps["leave"] = [this](const QString &) { m_next->setFocus(); };
    m_steps["row"] = [this](const QString &row) { m_box->setCurrentIndex(row.toInt()); };
}

void SelectorDesk::learnHostSteps()
{
    m_steps["offer"] = [=](const QString &words) {
        QVector<QVariantList> rows;
        for (const QString &nick : words.split(' ').mid(1)) {
            QVERIFY2(m_known[word(words, 0)].contains(nick), qPrintable(words));
            rows << m_known[word(words, 0)][nick];
        }
        m_host->table(word(words, 0)).setRows(rows);
    };
    m_steps["sessions"] = [=](const QString &words) {
        m_host->setSessions({{word(words, 0).toInt(), word(words, 1).toInt()}});
    };
    m_steps["announce"] = [this](const QString &) { emit m_host->decoder()->aNewSessions(); };
    m_steps["populate"] = [this](const QString &kind) {
        populate(kind.isEmpty() ? m_box : box(kind));
    };
}

void SelectorDesk::learnModelSteps()
{
    m_steps["model"] = [this](const QString &how) { changeModel(m_box, how); };
    m_steps["kill"] = [this](const QString &) { delete source(); };
    m_steps["display"] = [this](const QString &role) {
        qobject_cast<SecuritySelectorModel *>(source())->setDefaultDataRole(
            SecuritySelectorModel::ItemDataRole(Qt::UserRole + role.toInt()));
    };
    m_steps["limit"] = [this](const QString &boards) {
        bool isList = false;
        const boardlist list = boardListFromString(boards, &isList);
        QVERIFY2(isList, qPrintable(boards));
        qobject_cast<BoardSelectorModel *>(source())->setFilterBoards(list);
    };
    m_steps["positions"] = [this](const QString &) {
        qobject_cast<BoardSelectorModel *>(source())->setForPositions(true);
    };
    m_steps["flags"] = [=](const QString &words) {
        auto *const boards = qobject_cast<BoardSelectorBox *>(m_box);
        if (word(words, 0) == "on")
            boards->setBoardFlagsOnFilter(word(words, 1).toInt());
        else
            boards->setBoardFlagsOffFilter(word(words, 1).toInt());
    };
    m_steps["sectype"] = [this](const QString &type) {
        qobject_cast<BoardSelectorBox *>(m_box)->setSecTypeFilter(type.at(0));
    };
    m_steps["risk"] = [this](const QString &is) { m_form.setProperty("RiskAddress", is); };
}

void SelectorDesk::learnAnswers()
{
    m_answers["reports"] = [this](const QString &) { return m_log.mid(1); };
    m_answers["shows"] = [this](const QString &) {
        QStringList parts{m_box->currentText()};
        for (const QByteArray &name : kinds[m_box->objectName()].properties)
            parts << m_box->property(name).toString();
        parts << QString::number(m_box->currentIndex());
        return (parts << QString::number(m_box->lineEdit()->cursorPosition())).join('|');
    };
    m_answers["lit"] = [this](const QString &) {
        const bool isOpen = m_box->view()->isVisible();
        const QString row = QString::number(m_box->view()->currentIndex().row());
        const QString completion = QString("%1 of %2").arg(completions()->currentIndex().row());
        const QString focus = isOpen ? "list" : m_next->hasFocus() ? "next" : "box";
        return QStringList({isOpen ? row : "-",
                            completions()->isVisible()
                                ? completion.arg(completions()->model()->rowCount())
                                : QString("-"),
                            focus})
            .join('|');
    };
    m_answers["lists"] = [this](const QString &) {
        return column(m_box->model(), m_box->modelColumn(), Qt::DisplayRole);
    };
    m_answers["ids"] = [this](const QString &) {
        const Kind kind = kinds[m_box->objectName()];
        return column(m_box->model(), kind.idColumn, kind.idRole);
    };
    m_answers["source"] = [this](const QString &) {
        return column(source(), 0, kinds[m_box->objectName()].idRole);
    };
    m_answers["selected"] = [this](const QString &) { return m_box->lineEdit()->selectedText(); };
    m_answers["tip"] = [this](const QString &) { return m_box->lineEdit()->toolTip(); };
    // What the hub holds under the names that are asked for: StockId=1|StockCode=MX
    m_answers["hub"] = [this](const QString &about) {
        QStringList held;
        for (const QString &pair : about.split('|')) {
            const QString name = pair.section('=', 0, 0);
            held << name + '=' + m_hub.values()[name].toString();
        }
        return held.join('|');
    };
}

void SelectorDesk::play(const DataRow &story)
{
    for (QAbstractItemModel *const model : {m_box->model(), source()})
        new QAbstractItemModelTester(model, QAbstractItemModelTester::FailureReportingMode::QtTest,
                                     model);
    for (int i = 1; i < story.size() && !QTest::currentTestFailed(); ++i) {
        const QString verb = word(story.at(i), 0);
        const QString told = story.at(i).section(' ', 1);
        const QString words = told == "-" ? QString() : told;
        const QString place = QString("%1:%2: ").arg(story.file).arg(story.line + i);
        if (verb == "given" || verb == "when") {
            for (const QString &step : words.split("; "))
                act(step);
            if (verb == "given")
                m_log.clear();
        } else {
            const QString found = answer(verb, words);
            QVERIFY2(found == words, qPrintable(place + verb + " \"" + found + '"'));
            if (verb == "reports")
                m_log.clear();
        }
    }
    const QString place = QString("%1:%2: ").arg(story.file).arg(story.line);
    QVERIFY2(m_log.isEmpty(), qPrintable(place + "also reports" + m_log));
    checkChoice();
}

// The box answers for the row that it shows.
void SelectorDesk::checkChoice() const
{
    const Kind kind = kinds[m_box->objectName()];
    const int row = m_box->currentIndex();
    if (row < 0 || m_box->itemText(row) != m_box->currentText() || kind.idRole == Qt::DisplayRole)
        return;
    const QString id = m_box->itemData(row, kind.idRole).toString();
    if (!kind.properties.isEmpty())
        QCOMPARE(m_box->property(kind.properties.first()).toString(), id.section(',', -1));
}

void SelectorDesk::act(const QString &step)
{
    const auto known = m_steps.constFind(word(step, 0));
    QVERIFY2(known != m_steps.cend(), qPrintable("no such step: " + step));
    (*known)(step.section(' ', 1));
}

QString SelectorDesk::answer(const QString &verb, const QString &about) const
{
    const auto known = m_answers.constFind(verb);
    return known == m_answers.cend() ? "no such question" : (*known)(about);
}

QString SelectorDesk::takeReports()
{
    QString reports = answer("reports");
    m_log.clear();
    return reports;
}

QAbstractItemView *SelectorDesk::completions() const
{
    return m_box->completer()->popup();
}

QAbstractItemModel *SelectorDesk::source() const
{
    return sourceOf(m_box);
}

// Where a user's key goes.
void SelectorDesk::press(int key)
{
    QWidget *const popup = QApplication::activePopupWidget();
    QWidget *const view = popup && popup->focusWidget() ? popup->focusWidget() : popup;
    QTest::keyClick(view ? view : m_box, Qt::Key(key));
}

QString SelectorDesk::column(const QAbstractItemModel *model, int column, int role) const
{
    QStringList texts;
    for (int row = 0; row < model->rowCount(); ++row)
        texts << model->index(row, column).data(role).toString();
    return texts.join(' ');
}

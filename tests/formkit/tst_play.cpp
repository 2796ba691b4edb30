// SPDX-License-Identifier: BSD-3-Clause
#include "storyplayer.h"

#include <formkit/dateedit.h>
#include <formkit/numbereditor.h>

#include <hostapi/exception.h>

#include <support/stricttest.h>

#include <QApplication>
#include <QMetaProperty>
#include <QRandomGenerator>

#include <cmath>

namespace {

// What stands on pages, and is bound while its page shows.
const QStringList Pages{"limit", "limit2", "strike"};

// Empty and "0" are the same id: none.
bool agree(const QString &name, const QString &a, const QString &b)
{
    const auto isNone = [](const QString &id) { return id.isEmpty() || id == "0"; };
    return a == b || (name.endsWith("Id") && isNone(a) && isNone(b));
}

QString digitsOf(const QString &text)
{
    QString digits;
    for (const QChar c : text) {
        if (c.isDigit() && (c.digitValue() != 0 || !digits.isEmpty()))
            digits += QChar('0' + c.digitValue());
    }
    return digits;
}

// Whether a number ends in more zeros than another one.
bool isMultiplied(const QString &longer, const QString &shorter)
{
    const QString zeros = longer.mid(shorter.size());
    return longer.startsWith(shorter) && zeros.size() <= 6 && zeros.count('0') == zeros.size();
}

// Whether one text is the other with one character more.
bool isOneMore(const QString &longer, const QString &shorter)
{
    for (int i = 0; longer.size() == shorter.size() + 1 && i < longer.size(); ++i) {
        if (QString(longer).remove(i, 1) == shorter)
            return true;
    }
    return false;
}

} // namespace

// A hand, a program and a failing host play on one form at random. What stands in stories/play.txt
// is all that they know; a few rules, which hold whatever was done, judge.
class PlayTest : public StrictTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale("en_US")); }
    void play();

private:
    struct Bound
    {
        QString name;
        QObject *object;
        QMetaProperty property;
    };
    // What number editors hold and show before a deed.
    struct Amount
    {
        NumberEditor *editor;
        QString value;
        QString text;
        bool isSelected;
    };

    QVector<Bound> bound(StoryPlayer *player) const;
    void act(const QString &who, const QString &steps);
    void checkHub();
    void checkScreen();
    void checkBox(ComboBox *box);
    void checkAmounts(const QString &who, const QString &steps, const QVector<Amount> &before);
    void checkUndo(const QString &step, const Amount &before, const Amount &after);
    void checkStep(const QString &step, const Amount &before, const Amount &after);
    void checkHost();
    void failSoon(int n);
    QVector<Amount> amounts() const;
    QString fill(QString steps);

    TestHost m_host;
    std::unique_ptr<StoryPlayer> m_player;
    QMap<QString, QStringList> m_picks;
    QMap<NumberEditor *, QSet<QString>> m_shown; // every text that each has shown
    QMap<QString, QString> m_programmed;         // what the program last set, by name
    QRandomGenerator m_random{1};
    QStringList m_deeds;
};

// Every property that the hub writes and listens to.
QVector<PlayTest::Bound> PlayTest::bound(StoryPlayer *player) const
{
    QVector<Bound> all;
    for (QWidget *const control : player->control("stock")->window()->findChildren<QWidget *>()) {
        if (Pages.contains(control->objectName()))
            continue;
        const QStringList names = player->hub()->objectProperty(control);
        const QMetaObject *const meta = control->metaObject();
        for (int i = 0; i < meta->propertyCount() && !names.isEmpty(); ++i) {
            const QMetaProperty property = meta->property(i);
            const QString field = control->property("field").toString();
            const QString name = i == meta->userProperty().propertyIndex() && !field.isEmpty()
                                     ? field
                                     : property.name();
            if (property.hasNotifySignal() && property.isWritable() && names.contains(name))
                all.append({name, control, property});
        }
    }
    return all;
}

QString PlayTest::fill(QString steps)
{
    for (auto pick = m_picks.cbegin(); pick != m_picks.cend(); ++pick)
        steps.replace('{' + pick.key() + '}', pick->at(m_random.bounded(pick->size())));
    return steps;
}

void PlayTest::act(const QString &who, const QString &steps)
{
    const Values before = m_player->hub()->values();
    for (const QString &step : steps.split("; ")) {
        if (who == "program") {
            for (const QString &pair : step.section(' ', 1).split(' ')) {
                if (pair.contains('='))
                    m_programmed[pair.section('=', 0, 0)] = pair.section('=', 1);
            }
            if (step == "again") {
                const Values held = m_player->hub()->values();
                for (auto value = held.cbegin(); value != held.cend(); ++value)
                    m_programmed[value.key()] = value->toString();
            }
            if (step.startsWith("hub "))
                m_programmed[step.section(' ', 1, 1)] = step.section(' ', 2);
        }
        try {
            m_player->act(step);
        } catch (const Exception &) { // the host's, passed on
        }
    }
    // What a hand has changed is nothing that the program set.
    const Values after = m_player->hub()->values();
    for (auto value = after.cbegin(); value != after.cend() && who == "hand"; ++value) {
        if (before[value.key()] != value->toString())
            m_programmed.remove(value.key());
    }
}

// The hub holds what each property reads, or names it.
void PlayTest::checkHub()
{
    const QStringList unshown = m_player->hub()->unshown();
    QMap<QString, QString> differing; // what is told of each, by name
    for (const Bound &each : bound(m_player.get())) {
        const QString held = m_player->held(each.name);
        const QString read = each.property.read(each.object).toString();
        if (!agree(each.name, held, read))
            differing[each.name] = each.name + ": held " + held + ", read " + read;
    }
    for (auto each = differing.cbegin(); each != differing.cend(); ++each)
        QVERIFY2(unshown.contains(each.key()) || !m_programmed.contains(each.key()),
                 qPrintable(*each));
    for (const QString &name : unshown) {
        const bool becameAnother = !agree(name, m_programmed.value(name), m_player->held(name));
        QVERIFY2(differing.contains(name) || becameAnother,
                 qPrintable(name + ": set and held " + m_player->held(name)));
    }
}

// What is read is what can be seen.
void PlayTest::checkScreen()
{
    for (const Amount &now : amounts()) {
        const QString shown = now.editor->fromText(now.text);
        const bool isSame =
            now.value == shown || now.editor->toText(now.value) == now.text ||
            (decimal::canConvert(now.value, false) && decimal::canConvert(shown, false) &&
             decimal(now.value) == decimal(shown));
        QVERIFY2(!now.editor->isValid() || (isSame && now.editor->toolTip().isEmpty()),
                 qPrintable(now.editor->objectName() + ' ' + now.value + " shows " + now.text));
    }
    for (const char *const name : {"stock", "twin", "board", "security", "partner"})
        checkBox(m_player->find<ComboBox>(name));
}

// A box answers for the row that it shows, and is marked while it waits for what the hub holds.
void PlayTest::checkBox(ComboBox *box)
{
    const QMetaProperty key = box->metaObject()->userProperty();
    const QString id = key.read(box).toString();
    const QString held = m_player->held(key.name());
    const QString mark = box->lineEdit()->toolTip();
    const QString told = box->objectName() + " reads " + id + ", held " + held + ", " + mark;
    const bool isPartner = box->objectName() == "partner";
    const int row = box->currentIndex();
    const bool isShown = row >= 0 && box->itemText(row) == box->currentText();
    if (isShown && !isPartner)
        QCOMPARE(id, box->itemData(row, m_player->roleOfId(box)).toString().section(',', -1));
    if (box->currentText().isEmpty() && !isShown && !isPartner)
        QCOMPARE(id, QString("0"));
    const QStringList unshown = m_player->hub()->unshown();
    for (const Bound &each : bound(m_player.get())) {
        const QString read = each.property.read(each.object).toString();
        const bool isTold = each.object != box || unshown.contains(each.name) ||
                            unshown.contains(key.name()) ||
                            agree(each.name, m_player->held(each.name), read);
        QVERIFY2(!isShown || isTold, qPrintable(told + ": " + each.name + ' ' + read));
    }
    const bool waits = mark.endsWith(" is not in the list yet");
    const bool isCode = waits && !agree(key.name(), held, mark.section(' ', 0, 0));
    QCOMPARE(box->lineEdit()->styleSheet().contains("color"), !mark.isEmpty());
    QVERIFY2(waits || isPartner || held.toLongLong() == 0 || held == id, qPrintable(told));
    // A typed text may name what waits.
    QVERIFY2(!waits || !isShown || isCode || !agree(key.name(), held, id), qPrintable(told));
}

// No deed makes an amount that nobody entered; those of pages come and go.
void PlayTest::checkAmounts(const QString &who, const QString &steps, const QVector<Amount> &before)
{
    const QString about = steps.section("; ", 0, 0).section(' ', 1);
    const QString step = steps.section("; ", 1, 1);
    const QVector<Amount> after = amounts();
    for (int i = 0; i < before.size(); ++i) {
        const NumberEditor *const editor = before[i].editor;
        const QString said = editor->objectName() + ": " + before[i].text + " to " + after[i].text;
        const bool isKey = step.startsWith("type ") || step.startsWith("press Backspace") ||
                           step.startsWith("press Delete");
        const bool isSuffix = QString("kmК").contains(step.right(1));
        if (who == "host" && !Pages.contains(editor->objectName()))
            QVERIFY2(before[i].text == after[i].text, qPrintable(said));
        if (who == "hand" && about == editor->objectName()) {
            checkUndo(step, before[i], after[i]);
            checkStep(step, before[i], after[i]);
        }
        m_shown[after[i].editor] << before[i].text << after[i].text;
        if (who != "hand" || about != editor->objectName() || !isKey || before[i].isSelected)
            continue;
        const QString was = digitsOf(before[i].text);
        const QString is = digitsOf(after[i].text);
        const bool isNear = was == is || isOneMore(is, was) || isOneMore(was, is) ||
                            (isSuffix && isMultiplied(is, was)) ||
                            step.startsWith("press"); // leading zeros may go with a digit
        QVERIFY2(isNear, qPrintable(said));
    }
}

// Undo and redo show nothing that was not there.
void PlayTest::checkUndo(const QString &step, const Amount &before, const Amount &after)
{
    if (step.endsWith("+Z"))
        QVERIFY2(after.text == before.text || m_shown[after.editor].contains(after.text),
                 qPrintable(before.text + " undone to " + after.text));
}

// A step leads to a multiple of the step, the right way and not too far, or nowhere.
void PlayTest::checkStep(const QString &step, const Amount &before, const Amount &after)
{
    const bool isUp = step.endsWith("Up") || step.startsWith("wheel 1") || step == "wheel 60";
    const bool isStep = isUp || step.endsWith("Down") || step.startsWith("wheel");
    if (!isStep || before.text == after.text)
        return;
    const double size = after.editor->getStep().toDouble();
    const double was = before.value.toDouble();
    const double is = after.value.toDouble();
    const double way = isUp ? is - was : was - is;
    QVERIFY2(size > 0 && std::fmod(is, size) == 0 && way > 0 && way <= 100 * size,
             qPrintable(step + ": " + before.text + " stepped to " + after.text));
}

QVector<PlayTest::Amount> PlayTest::amounts() const
{
    QVector<Amount> all;
    for (auto *const editor : m_player->control("stock")->window()->findChildren<NumberEditor *>())
        all.append({editor, editor->getValue(), editor->text(), editor->hasSelectedText()});
    return all;
}

// At the n-th cell or question to the host from now, each once; 0 for never.
void PlayTest::failSoon(int n)
{
    for (const char *const name : {"stocks", "boards", "securities", "gx.diler"})
        m_host.table(name).failAtCell(n);
    m_host.failAtDirectoryCall(n);
}

void PlayTest::checkHost()
{
    for (const char *const name : {"stocks", "boards", "securities", "gx.diler"})
        QVERIFY2(!m_host.table(name).isLocked() && m_host.table(name).references() == 0, name);
}

void PlayTest::play()
{
    m_player = std::make_unique<StoryPlayer>(&m_host, "play");
    QList<QStringList> deeds;
    for (const DataRow &row : rowsOf("stories/play.txt")) {
        if (row[0] == "pick")
            m_picks[row[1]] = row[2].split(' ');
        if (row[0] == "play")
            deeds << row.mid(1);
    }
    const int count = qEnvironmentVariableIntValue("FORMKIT_PLAY_STEPS");
    m_random.seed(quint32(qEnvironmentVariableIntValue("FORMKIT_PLAY_SEED")));
    for (int i = 0; i < (count > 0 ? count : 3000) && !QTest::currentTestFailed(); ++i) {
        const QStringList &deed = deeds.at(m_random.bounded(deeds.size()));
        const QString steps = fill(deed[1]);
        m_deeds << deed[0] + '\t' + steps;
        const QVector<Amount> before = amounts();
        if (m_random.bounded(4) == 0)
            failSoon(m_random.bounded(1, 30));
        act(deed[0], steps);
        // Several deeds may fall in one turn of the event loop.
        if (m_random.bounded(3) != 0)
            QCoreApplication::processEvents();
        failSoon(0);
        QCoreApplication::processEvents();
        checkHub();
        checkScreen();
        checkAmounts(deed[0], steps, before);
        checkHost();
    }
    if (QTest::currentTestFailed())
        qInfo().noquote() << "after\n" +
                                 QStringList(m_deeds.mid(qMax(0, m_deeds.size() - 25))).join('\n');
    m_player.reset();
}

QTEST_MAIN(PlayTest)
#include "tst_play.moc"

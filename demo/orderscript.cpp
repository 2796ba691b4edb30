// SPDX-License-Identifier: BSD-3-Clause
#include "orderscript.h"

#include "orderwindow.h"
#include "statementswindow.h"
#include "valuesjson.h"

#include <formkit/boardselectormodel.h>
#include <formkit/numbereditor.h>
#include <formkit/partnerselectorbox.h>
#include <formkit/securityselectorbox.h>
#include <formkit/stockselectorbox.h>
#include <hostapi/datetime.h>
#include <hostapi/icore.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QKeyEvent>
#include <QPainter>

namespace {

void press(int key, const QString &text = QString())
{
    QWidget *target = QApplication::activePopupWidget();
    if (!target)
        target = QApplication::focusWidget();
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key, Qt::NoModifier, text);
        if (target)
            QApplication::sendEvent(target, &event);
    }
    QApplication::processEvents();
}

void type(const QString &text)
{
    for (const QChar c : text)
        press(c.toUpper().unicode(), QString(c));
}

QPixmap withPopups(QWidget *window)
{
    QPixmap picture = window->grab();
    QPainter painter(&picture);
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget *popup : widgets) {
        if (popup != window && popup->isVisible())
            painter.drawPixmap(popup->pos() - window->mapToGlobal(QPoint()), popup->grab());
    }
    return picture;
}

} // namespace

OrderScript::OrderScript(OrderWindow *window, const QString &folder, const QString &prefix)
    : m_window(window), m_folder(folder), m_prefix(prefix)
{
}

bool OrderScript::fail(const QString &reason)
{
    m_error = reason;
    return false;
}

bool OrderScript::run()
{
    if (!QDir().mkpath(m_folder))
        return fail(QStringLiteral("%1: cannot make the folder").arg(m_folder));
    m_window->resize(1000, 720);
    m_window->show();
    m_window->activateWindow();
    QApplication::setActiveWindow(m_window);
    QApplication::processEvents();

    m_result.insert(QStringLiteral("before"), ValuesJson::toJson(m_window->hub()->values()));
    if (!showErrors() || !showTypeAhead() ||
        !enterOrder(QStringLiteral("F"), QStringLiteral("futures")) ||
        !enterOrder(QStringLiteral("O"), QStringLiteral("options")) ||
        !enterOrder(QStringLiteral("S"), QStringLiteral("order")))
        return false;
    m_result.insert(QStringLiteral("after"), ValuesJson::toJson(m_window->hub()->values()));
    return true;
}

bool OrderScript::showErrors()
{
    fillIn("price", QStringLiteral("0"));
    fillIn("quantity", QStringLiteral("100"));
    static_cast<QAbstractButton *>(m_window->control("check"))->click();
    QApplication::processEvents();
    return takePicture(QStringLiteral("errors"));
}

bool OrderScript::showTypeAhead()
{
    if (!chooseBoard(QStringLiteral("S")))
        return false;
    auto *security = static_cast<SecuritySelectorBox *>(m_window->control("security"));
    security->setFocus(Qt::TabFocusReason);
    type(security->itemText(0).left(1));
    const bool taken = takePicture(QStringLiteral("typeahead"));
    press(Qt::Key_Escape);
    return taken;
}

bool OrderScript::enterOrder(const QString &securityType, const QString &picture)
{
    if (!chooseBoard(securityType))
        return false;
    const auto *security = static_cast<SecuritySelectorBox *>(m_window->control("security"));
    if (security->count() == 0)
        return fail(QStringLiteral("the board lists no security"));
    fillIn("security", security->itemText(0));
    const auto *partner = static_cast<PartnerSelectorBox *>(m_window->control("partner"));
    if (partner->count() > 0)
        fillIn("partner", partner->itemText(0));

    // In the form in which this machine's locale writes numbers and dates.
    const auto *price = static_cast<NumberEditor *>(m_window->control("price"));
    fillIn("price", price->toText(QStringLiteral("1234567.25")));
    fillIn("offset", price->toText(QStringLiteral("-0.75")));
    fillIn("quantity", QStringLiteral("1500"));
    const datetime goodTill(QDate(2035, 12, 31));
    fillIn("goodTill", goodTill.toSystemString(true, QLocale::ShortFormat));
    fillIn("comment", QStringLiteral("by the script"));
    for (const char *choice : {"buy", "hidden"}) {
        m_window->control(choice)->setFocus(Qt::TabFocusReason);
        press(Qt::Key_Space, QStringLiteral(" "));
    }
    const QHash<QString, QPair<const char *, QString>> details{
        {QStringLiteral("S"), {"settleDays", QStringLiteral("2")}},
        {QStringLiteral("F"), {"account", QStringLiteral("M-100")}},
        {QStringLiteral("O"), {"strike", QStringLiteral("150")}}};
    fillIn(details.value(securityType).first, details.value(securityType).second);
    static_cast<QAbstractButton *>(m_window->control("check"))->click();
    QApplication::processEvents();
    return takePicture(picture);
}

// Chooses the first board of that type that has securities.
bool OrderScript::chooseBoard(const QString &securityType)
{
    auto *exchange = static_cast<StockSelectorBox *>(m_window->control("exchange"));
    const auto *security = static_cast<SecuritySelectorBox *>(m_window->control("security"));
    const Table *table = ICore::instance()->table(QStringLiteral("boards"));
    const auto *boards = m_window->findChild<BoardSelectorModel *>();
    for (int row = 0; row < boards->rowCount(); ++row) {
        if (boards->at(row).field(table->columnIndex(QStringLiteral("sectype"))).toString() !=
            securityType)
            continue;
        const QModelIndex index = boards->index(row, 0);
        const int stock = exchange->findData(index.data(BoardSelectorModel::StockIdRole),
                                             Qt::UserRole + 1, Qt::MatchFixedString);
        fillIn("exchange", exchange->itemText(stock));
        fillIn("board", index.data().toString());
        if (security->count() > 0)
            return true;
    }
    return fail(QStringLiteral("no board of type %1 has securities").arg(securityType));
}

// Goes to the field, selects its text, types, and leaves the field.
void OrderScript::fillIn(const char *control, const QString &text)
{
    QWidget *widget = m_window->control(control);
    widget->setFocus(Qt::TabFocusReason);
    QKeyEvent selectAll(QEvent::KeyPress, Qt::Key_A, Qt::ControlModifier);
    QApplication::sendEvent(QApplication::focusWidget(), &selectAll);
    type(text);
    if (QApplication::activePopupWidget())
        press(Qt::Key_Escape);
    press(Qt::Key_Tab, QStringLiteral("\t"));
}

bool OrderScript::fetchStatement(const QUrl &url)
{
    FtpServer server;
    const QString user = url.userName().isEmpty() ? QStringLiteral("anonymous") : url.userName();
    server.logon = {url.host().toStdString(), static_cast<unsigned short>(url.port(21)),
                    user.toStdString(), url.password().toStdString()};

    StatementsWindow window;
    window.show();
    const auto wait = [&window] {
        QEventLoop loop;
        QObject::connect(&window, &StatementsWindow::finished, &loop, &QEventLoop::quit);
        loop.exec();
    };
    window.open(server, url.path());
    wait();
    if (!takePicture(QStringLiteral("statements"), &window))
        return false;
    window.downloadTo(QDir(m_folder).filePath(QStringLiteral("statement")));
    wait();
    return takePicture(QStringLiteral("statement-saved"), &window);
}

bool OrderScript::takePicture(const QString &name, QWidget *window)
{
    QApplication::processEvents();
    const QString file = QDir(m_folder).absoluteFilePath(m_prefix + name + QStringLiteral(".png"));
    const QPixmap picture = window ? window->grab() : withPopups(m_window);
    if (!picture.save(file))
        return fail(QStringLiteral("%1: cannot write the picture").arg(file));
    m_pictures << file;
    return true;
}

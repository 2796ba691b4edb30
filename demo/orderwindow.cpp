// SPDX-License-Identifier: BSD-3-Clause
#include "orderwindow.h"

#include "statementswindow.h"
#include "tracelog.h"
#include "ui_equitypage.h"
#include "ui_futurespage.h"
#include "ui_optionspage.h"
#include "ui_orderwindow.h"

#include <embeddedhost/embeddedhost.h>
#include <formkit/boardselectormodel.h>
#include <formkit/formrules.h>
#include <formkit/numbereditor.h>
#include <formkit/securityselectormodel.h>
#include <formkit/securitysteps.h>
#include <formkit/state.h>
#include <formkit/stockselectormodel.h>
#include <formkit/summator.h>
#include <hostapi/fieldconstvalue.h>

#include <QAccessible>
#include <QScreen>

#include <utility>

namespace {

template <typename Page> QWidget *makePage(QWidget *parent)
{
    auto *page = new QWidget(parent);
    Page().setupUi(page);
    return page;
}

const QString equities = QStringLiteral("S");

} // namespace

OrderWindow::OrderWindow(EmbeddedHost *host, QWidget *parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::OrderWindow>())
    , m_host(host)
    , m_stocks(new StockSelectorModel(this))
    , m_boards(new BoardSelectorModel(this))
    , m_securities(new SecuritySelectorModel(this))
{
    m_ui->setupUi(this);
    const int titleBar = style()->pixelMetric(QStyle::PM_TitleBarHeight);
    resize(size().boundedTo(screen()->availableSize() - QSize(0, 2 * titleBar)));
    m_ui->exchange->setSourceModel(m_stocks);
    m_ui->board->setSourceModel(m_boards);
    m_ui->security->setSourceModel(m_securities);
    makeSubForms();
    makeSum();
    auto *const steps = new SecuritySteps(m_ui->form);
    steps->addPrice(m_ui->price);
    steps->addQuantity(m_ui->quantity);

    m_hub.connectAll(m_ui->form);
    m_ui->details->setHub(&m_hub);
    m_rules = new FormRules(&m_hub, m_ui->form);
    connect(&m_hub, &Properties::hasChanged, this, &OrderWindow::showValues);

    makeStates();
    connectHost();
    connect(m_ui->check, &QPushButton::clicked, this, &OrderWindow::check);
    connect(m_ui->place, &QPushButton::clicked, this, &OrderWindow::send);
    connect(m_ui->withdraw, &QPushButton::clicked, this, &OrderWindow::send);
    connect(m_ui->statements, &QPushButton::clicked, this, [this] {
        if (!m_statements)
            m_statements = new StatementsWindow(this);
        m_statements->show();
        m_statements->raise();
    });
    registerBoards();
    showValues();
}

OrderWindow::~OrderWindow()
{
    // The machine's last state logs, so it must end while the trace is there.
    m_machine.stop();
    disconnect(&m_machine, nullptr, this, nullptr);
}

QWidget *OrderWindow::control(const char *name) const
{
    return findChild<QWidget *>(QLatin1String(name));
}

void OrderWindow::makeSubForms()
{
    m_subForms.insert(equities, makePage<Ui::EquityPage>(m_ui->details));
    m_subForms.insert(SecTypes::Futures.toString(), makePage<Ui::FuturesPage>(m_ui->details));
    m_subForms.insert(SecTypes::Option.toString(), makePage<Ui::OptionsPage>(m_ui->details));
    // Places for the sub-forms before any board is read: boards that no exchange has.
    boardid place;
    for (QWidget *subForm : std::as_const(m_subForms)) {
        --place.board_id;
        m_ui->details->addWidget(place, subForm);
    }
    // These were made last, so that Tab would reach them last.
    QWidget *before = m_ui->comment;
    const QList<QWidget *> controls = m_ui->details->findChildren<QWidget *>();
    for (QWidget *control : controls) {
        if (control->focusPolicy() & Qt::TabFocus) {
            setTabOrder(before, control);
            before = control;
        }
    }
}

void OrderWindow::makeSum()
{
    auto *sum = new Summator(m_ui->form);
    sum->setProperty("fields", QStringLiteral("Price=Summand Offset=Addendum Total=Value"));
    // Nobody can type into these, so they have no field's background.
    QPalette palette;
    palette.setBrush(QPalette::Base, Qt::transparent);
    m_ui->total->setPalette(palette);
}

void OrderWindow::makeStates()
{
    auto *log = new TraceLog(this);
    connect(log, &TraceLog::line, m_ui->trace, &QPlainTextEdit::appendPlainText);

    const QString prefix = QStringLiteral("Order");
    auto *open = new State(prefix, QStringLiteral("Open"));
    auto *editing = new State(prefix, QStringLiteral("Editing"), open);
    auto *valid = new State(prefix, QStringLiteral("Valid"), open);
    auto *invalid = new State(prefix, QStringLiteral("Invalid"), open);
    auto *done = new State(prefix, QStringLiteral("Sent"), open);
    for (State *state : {valid, invalid, done})
        state->addTransition(&m_hub, SIGNAL(hasChanged()), editing);
    for (State *state : {editing, valid, invalid, done}) {
        state->addTransition(this, SIGNAL(accepted()), valid);
        state->addTransition(this, SIGNAL(rejected()), invalid);
    }
    valid->addTransition(this, SIGNAL(sent()), done);
    open->setInitialState(editing);
    m_machine.addState(open);
    m_machine.setInitialState(open);
    m_machine.start();
}

void OrderWindow::connectHost()
{
    connect(m_host, &EmbeddedHost::progress, this, &OrderWindow::showProgress);
    connect(m_host->decoder(), &EmbeddedDecoder::aNewSessions, this,
            [this] { m_securitiesAreFresh = true; });
    connect(m_host, &EmbeddedHost::loaded, this, [this] {
        refresh();
        endProgress(tr("Reference data loaded"));
        fill(std::exchange(m_toFill, {}));
    });
    connect(m_host, &EmbeddedHost::failed, this, &OrderWindow::endProgress);
    connect(m_host, &EmbeddedHost::cancelled, this, [this] { endProgress(tr("Cancelled")); });
    connect(m_ui->reload, &QPushButton::clicked, m_host, &EmbeddedHost::reload);
    connect(m_ui->cancelLoad, &QPushButton::clicked, m_host, &EmbeddedHost::cancel);
    connect(m_ui->newSessions, &QPushButton::clicked, this, &OrderWindow::announceSessions);
    endProgress(QString());
}

void OrderWindow::refresh()
{
    m_stocks->populate();
    m_boards->populate();
    // If the load has opened other sessions, the securities have been read again already.
    if (!m_securitiesAreFresh)
        m_securities->aNewSessions();
    m_ui->partner->populate();
    registerBoards();
}

void OrderWindow::registerBoards()
{
    const Table *table = ICore::instance()->table(QStringLiteral("boards"));
    for (int row = 0; row < m_boards->rowCount(); ++row) {
        const Record board = m_boards->at(row);
        const auto cell = [&](const char *name) {
            return board.field(table->columnIndex(QLatin1String(name)));
        };
        QWidget *const subForm = m_subForms.value(cell("sectype").toString());
        m_ui->details->addWidget({cell("stock_id").toInteger(), cell("board_id").toInteger()},
                                 subForm ? subForm : m_subForms.value(equities));
    }
}

void OrderWindow::fill(const Values &values)
{
    if (m_host->isLoading()) {
        m_toFill = values;
        return;
    }
    for (const char *name : {"StockId", "StockCode", "BoardId", "BoardCode"}) {
        const auto value = values.constFind(QLatin1String(name));
        if (value != values.constEnd())
            m_hub.setValue(value.key(), value->toString());
    }
    m_hub.setValues(values);
}

void OrderWindow::showValues()
{
    m_ui->values->show(m_hub.values());
    if (m_hub.values() != m_told)
        tell(QString());
}

bool OrderWindow::check()
{
    const bool isValid = m_rules->check();
    tell(isValid ? tr("Valid, not placed") : tr("Not valid: %1").arg(m_rules->firstError()));
    if (isValid)
        Q_EMIT accepted();
    else
        Q_EMIT rejected();
    return isValid;
}

void OrderWindow::send()
{
    const bool places = m_hub.values()["Action"] == QLatin1String("place");
    if (places && !check())
        return;
    tell(places ? tr("Order placed: %1 %2 %3")
                      .arg((m_ui->buy->isChecked() ? m_ui->buy : m_ui->sell)->text(),
                           m_ui->quantity->text(), m_ui->security->currentText())
                : tr("Order withdrawn"));
    Q_EMIT sent();
}

void OrderWindow::tell(const QString &outcome)
{
    m_told = m_hub.values();
    // Never an empty text, so that the line keeps its height and the form does not move.
    m_ui->outcome->setText(outcome.isEmpty() ? QStringLiteral(" ") : outcome);
    m_ui->outcome->setToolTip(outcome);
    if (outcome.isEmpty())
        return;
    QAccessibleEvent alert(m_ui->outcome, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

// Closes all but the first session of each exchange, or opens them again.
void OrderWindow::announceSessions()
{
    if (!m_allSessions.isEmpty()) {
        m_host->setSessions(std::exchange(m_allSessions, {}));
        return;
    }
    m_allSessions = m_host->currentSessions();
    QVector<SessionId> first;
    for (const SessionId &session : std::as_const(m_allSessions)) {
        if (session.sess_id == 1)
            first.append(session);
    }
    m_host->setSessions(first);
}

void OrderWindow::showProgress(const QString &table, int rows, int total)
{
    m_securitiesAreFresh = false;
    m_ui->loadingText->setText(tr("Reading %1").arg(table));
    m_ui->progress->setMaximum(total);
    m_ui->progress->setValue(rows);
    m_ui->progress->show();
    m_ui->cancelLoad->show();
}

void OrderWindow::endProgress(const QString &text)
{
    m_ui->loadingText->setText(text);
    m_ui->loadingText->setToolTip(text);
    m_ui->progress->hide();
    m_ui->cancelLoad->hide();
}

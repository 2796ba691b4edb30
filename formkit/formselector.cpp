// SPDX-License-Identifier: BSD-3-Clause
#include "formselector.h"

#include "doing_p.h"
#include "properties.h"
#include "summator.h"

#include <QDebug>
#include <QDynamicPropertyChangeEvent>
#include <QLabel>
#include <QStackedLayout>
#include <QVBoxLayout>
#include <QVarLengthArray>

#include <algorithm>
#include <functional>

namespace {

const QByteArray boardsProperty = QByteArrayLiteral("boards");

boardlist boardsOf(const QWidget *page)
{
    const QString text = page->property(boardsProperty).toString();
    bool ok = false;
    const boardlist boards = boardListFromString(text, &ok);
    if (!ok)
        qWarning() << "FormSelector::addPage: page" << page->objectName()
                   << "serves no board, its boards are no pairs:" << text;
    return boards;
}

// Selectors of sub-forms inside a page, too: their own pages follow them.
bool isPlaced(const QWidget *widget)
{
    return widget->focusPolicy() != Qt::NoFocus || qobject_cast<const FormSelector *>(widget);
}

// Qt orders only what takes the focus.
void orderTabs(QWidget *first, QWidget *second)
{
    QVarLengthArray<QWidget *, 2> lent;
    for (QWidget *const widget : {first, second}) {
        if (widget->focusPolicy() == Qt::NoFocus) {
            widget->setFocusPolicy(Qt::TabFocus);
            lent << widget;
        }
    }
    QWidget::setTabOrder(first, second);
    for (QWidget *const widget : lent)
        widget->setFocusPolicy(Qt::NoFocus);
}

} // namespace

FormSelector::FormSelector(QWidget *parent) : FormSelector(nullptr, parent) {}

FormSelector::FormSelector(Properties *hub, QWidget *parent)
    : QWidget(parent), m_stack(new QStackedLayout(this)), m_hub(hub), m_emptyPage(new QLabel)
{
    m_stack->addWidget(m_emptyPage);
}

void FormSelector::setHub(Properties *hub)
{
    // Bindings that move are undone where they are made.
    if (!m_moving)
        unbindPages(m_hub);
    m_hub = hub;
    setWidget(m_shown);
}

void FormSelector::addWidget(boardid board, QWidget *form)
{
    if (!form)
        return;
    dropDeadPages();
    pageOf(form);
    m_boardForms.insert(board, form);
    if (board == m_shown)
        setWidget(board);
}

void FormSelector::addPage(QWidget *page)
{
    if (!page)
        return;
    dropDeadPages();
    pageOf(page);
    page->installEventFilter(this);
    readBoards(page);
}

bool FormSelector::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::DynamicPropertyChange ||
        static_cast<QDynamicPropertyChangeEvent *>(event)->propertyName() != boardsProperty)
        return false;
    // Showing another page may destroy this one, or the selector with it: no one else is to see
    // the event then.
    const QPointer<QObject> alive(watched);
    readBoards(static_cast<QWidget *>(watched));
    return !alive;
}

// Registers the boards of the form's property in place of those that it named before.
void FormSelector::readBoards(QWidget *form)
{
    const QPointer<QWidget> formBefore = m_boardForms.value(m_shown);
    boardlist &boards = pageOf(form).boards;
    for (const boardid &board : std::as_const(boards)) {
        if (m_boardForms.value(board) == form)
            m_boardForms.remove(board);
    }
    boards = boardsOf(form);
    for (const boardid &board : std::as_const(boards))
        m_boardForms.insert(board, form);
    if (m_boardForms.value(m_shown) != formBefore)
        setWidget(m_shown);
}

// The form's page, a new one if it has none yet.
FormSelector::Page &FormSelector::pageOf(QWidget *form)
{
    const auto isItsPage = [form](const Page &page) { return page.form == form; };
    const auto page = std::find_if(m_pages.begin(), m_pages.end(), isItsPage);
    if (page != m_pages.end())
        return *page;
    m_pages.append(Page{form, newHolder(form), {}});
    return m_pages.last();
}

QWidget *FormSelector::newHolder(QWidget *form)
{
    auto *holder = new QWidget(this);
    auto *column = new QVBoxLayout(holder);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(form);
    if (QLayout *inner = form->layout()) {
        const QMargins margins = inner->contentsMargins();
        inner->setContentsMargins(margins.left(), 3, margins.right(), 2);
    }
    column->addItem(new QSpacerItem(0, 0, QSizePolicy::Minimum, QSizePolicy::Expanding));
    m_stack->addWidget(holder);
    placeInTabOrder(form);
    return holder;
}

// Qt puts what joins a window at the end of its tab order.
void FormSelector::placeInTabOrder(QWidget *form)
{
    QWidget *last = this;
    for (QWidget *w = nextInFocusChain(); w != this && isAncestorOf(w); w = w->nextInFocusChain()) {
        if (isPlaced(w) && !form->isAncestorOf(w))
            last = w;
    }
    QVector<QWidget *> controls;
    for (QWidget *w = nextInFocusChain(); w != this; w = w->nextInFocusChain()) {
        if (isPlaced(w) && form->isAncestorOf(w))
            controls << w;
    }
    for (QWidget *const control : std::as_const(controls)) {
        orderTabs(last, control);
        last = control;
    }
}

QWidget *FormSelector::pageToShow() const
{
    const QPointer<QWidget> form = m_boardForms.value(m_shown);
    for (const Page &page : m_pages) {
        if (form && page.form == form)
            return page.holder;
    }
    return nullptr;
}

void FormSelector::dropDeadPages()
{
    const auto isAlive = [](const Page &page) { return page.isAlive(); };
    const auto firstDead = std::stable_partition(m_pages.begin(), m_pages.end(), isAlive);
    const QVector<Page> dead(firstDead, m_pages.end());
    m_pages.erase(firstDead, m_pages.end());
    for (const Page &page : dead) {
        if (page.form)
            page.form->removeEventFilter(this);
        // The stack would show a neighbour in place of a current page that goes.
        if (page.holder && page.holder == m_stack->currentWidget())
            m_stack->setCurrentWidget(m_emptyPage);
        delete page.holder;
    }
}

QList<QWidget *> FormSelector::getWidgetList() const
{
    QList<QWidget *> forms;
    for (const Page &page : m_pages) {
        if (page.isAlive())
            forms << page.form;
    }
    std::sort(forms.begin(), forms.end(), std::less<QWidget *>());
    return forms;
}

void FormSelector::setStockId(const QString &text)
{
    const qint32 id = text.toInt();
    if (id == m_current.stock_id)
        return;
    m_current.stock_id = id;
    setWidget(m_current);
}

void FormSelector::setBoardId(const QString &text)
{
    const qint32 id = text.toInt();
    if (id == m_current.board_id)
        return;
    m_current.board_id = id;
    setWidget(m_current);
}

void FormSelector::setWidget(boardid board)
{
    m_shown = board;
    if (m_moving)
        return;
    const QPointer<FormSelector> alive(this);
    const QPointer<QWidget> page = moveBindings();
    if (alive)
        m_stack->setCurrentWidget(page ? page.data() : m_emptyPage);
}

// Binds the page of m_shown alone and answers it. A control that is bound may ask for another
// board, page or hub, throw, or destroy the page or the selector. Pages that send each other away
// in a ring are left alone, unbound, once each could have had a turn.
QPointer<QWidget> FormSelector::moveBindings()
{
    const QPointer<FormSelector> alive(this);
    QPointer<Properties> hub;
    QPointer<QWidget> page;
    const auto isOutdated = [&] { return hub != m_hub || page != pageToShow(); };
    int turns = m_pages.size() + 1;
    const Doing program(Doing::Program);
    m_moving = true;
    do {
        hub = m_hub;
        page = pageToShow();
        unbindPages(hub);
        try {
            if (hub && hub->connectAll(page) && page && !isOutdated())
                reportSums(page);
        } catch (...) {
            if (alive) {
                m_moving = false;
                unbindPages(hub);
                m_stack->setCurrentWidget(m_emptyPage);
            }
            throw;
        }
        if (!alive)
            return nullptr;
        if (hub != m_hub)
            unbindPages(hub);
    } while (isOutdated() && --turns > 0);
    m_moving = false;
    if (isOutdated()) {
        qWarning() << "FormSelector::setWidget: the sub-forms send each other away";
        unbindPages(m_hub);
        return nullptr;
    }
    return page;
}

// A sum that changed while its page was hidden is not what the hub holds, and the hub cannot
// write its own into it.
void FormSelector::reportSums(QWidget *page)
{
    QVector<QPointer<Summator>> summators;
    const QList<Summator *> found = page->findChildren<Summator *>();
    for (Summator *summator : found)
        summators << summator;
    for (const QPointer<Summator> &summator : std::as_const(summators)) {
        if (summator)
            summator->report();
    }
}

void FormSelector::unbindPages(Properties *hub)
{
    if (!hub)
        return;
    for (const Page &page : std::as_const(m_pages))
        hub->disconnectAll(page.holder);
}

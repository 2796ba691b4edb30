// SPDX-License-Identifier: BSD-3-Clause
#include "formselector.h"

#include "doing_p.h"
#include "properties.h"
#include "summator.h"

#include <QDebug>
#include <QDynamicPropertyChangeEvent>
#include <QLabel>
#include <QMap>
#include <QPointer>
#include <QStackedLayout>
#include <QVBoxLayout>
#include <QVarLengthArray>
#include <QVector>

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

// A selector inside a page does not take the focus, but its own pages stand next to it in the tab
// order.
bool isPlaced(const QWidget *widget)
{
    return widget->focusPolicy() != Qt::NoFocus || qobject_cast<const FormSelector *>(widget);
}

// Qt orders only widgets that take the focus: others take it for the moment.
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

// A sum may have changed while its page was hidden. The hub cannot write what it holds into the
// sum, so it has to take the new one.
void reportSums(QWidget *page)
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

} // namespace

struct Q_DECL_HIDDEN FormSelector::Private
{
    struct Page
    {
        QPointer<QWidget> form;
        QPointer<QWidget> holder; // the form's parent
        boardlist boards;         // those that the form's property asked for

        // A form that has got another parent is no page any more.
        bool isAlive() const { return form && holder && form->parentWidget() == holder; }
    };

    explicit Private(FormSelector *selector) : q(selector) {}

    Page &pageOf(QWidget *form);
    void readBoards(QWidget *form);
    QWidget *newHolder(QWidget *form);
    void placeInTabOrder(QWidget *form);
    QWidget *pageToShow() const;
    void dropDeadPages();
    void unbindPages(Properties *properties);
    QPointer<QWidget> moveBindings();

    FormSelector *const q;
    boardid current;
    QMap<boardid, QPointer<QWidget>> boardForms;
    QVector<Page> pages;
    QStackedLayout *stack = new QStackedLayout(q);
    QLabel *emptyPage = new QLabel;
    QPointer<Properties> hub;
    boardid shown;
    bool moving = false;
};

FormSelector::FormSelector(QWidget *parent) : FormSelector(nullptr, parent) {}

FormSelector::FormSelector(Properties *hub, QWidget *parent)
    : QWidget(parent), d(std::make_unique<Private>(this))
{
    d->hub = hub;
    d->stack->addWidget(d->emptyPage);
}

FormSelector::~FormSelector() = default;

void FormSelector::setHub(Properties *hub)
{
    // While the bindings move, moveBindings() sees the change and unbinds.
    if (!d->moving)
        d->unbindPages(d->hub);
    d->hub = hub;
    setWidget(d->shown);
}

void FormSelector::addWidget(boardid board, QWidget *form)
{
    if (!form)
        return;
    d->dropDeadPages();
    d->pageOf(form);
    d->boardForms.insert(board, form);
    if (board == d->shown)
        setWidget(board);
}

void FormSelector::addPage(QWidget *page)
{
    if (!page)
        return;
    d->dropDeadPages();
    d->pageOf(page);
    page->installEventFilter(this);
    d->readBoards(page);
}

bool FormSelector::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::DynamicPropertyChange ||
        static_cast<QDynamicPropertyChangeEvent *>(event)->propertyName() != boardsProperty)
        return false;
    // Showing another page may destroy this one, or the selector with it. Then nobody else may
    // see the event.
    const QPointer<QObject> alive(watched);
    d->readBoards(static_cast<QWidget *>(watched));
    return !alive;
}

// Registers the boards of the form's property in place of those that it named before.
void FormSelector::Private::readBoards(QWidget *form)
{
    const QPointer<QWidget> formBefore = boardForms.value(shown);
    boardlist &boards = pageOf(form).boards;
    for (const boardid &board : std::as_const(boards)) {
        if (boardForms.value(board) == form)
            boardForms.remove(board);
    }
    boards = boardsOf(form);
    for (const boardid &board : std::as_const(boards))
        boardForms.insert(board, form);
    if (boardForms.value(shown) != formBefore)
        q->setWidget(shown);
}

// The form's page, a new one if it has none yet.
FormSelector::Private::Page &FormSelector::Private::pageOf(QWidget *form)
{
    const auto isItsPage = [form](const Page &page) { return page.form == form; };
    const auto page = std::find_if(pages.begin(), pages.end(), isItsPage);
    if (page != pages.end())
        return *page;
    pages.append(Page{form, newHolder(form), {}});
    return pages.last();
}

QWidget *FormSelector::Private::newHolder(QWidget *form)
{
    auto *holder = new QWidget(q);
    auto *column = new QVBoxLayout(holder);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(form);
    if (QLayout *inner = form->layout()) {
        const QMargins margins = inner->contentsMargins();
        inner->setContentsMargins(margins.left(), 3, margins.right(), 2);
    }
    column->addItem(new QSpacerItem(0, 0, QSizePolicy::Minimum, QSizePolicy::Expanding));
    stack->addWidget(holder);
    placeInTabOrder(form);
    return holder;
}

// Moves the form's controls from the end of the window's tab order, where Qt puts whatever joins
// the window, to the selector's place.
void FormSelector::Private::placeInTabOrder(QWidget *form)
{
    QWidget *const first = q->nextInFocusChain();
    QWidget *last = q;
    for (QWidget *w = first; w != q && q->isAncestorOf(w); w = w->nextInFocusChain()) {
        if (isPlaced(w) && !form->isAncestorOf(w))
            last = w;
    }
    QVector<QWidget *> controls;
    for (QWidget *w = first; w != q; w = w->nextInFocusChain()) {
        if (isPlaced(w) && form->isAncestorOf(w))
            controls << w;
    }
    for (QWidget *const control : std::as_const(controls)) {
        orderTabs(last, control);
        last = control;
    }
}

QWidget *FormSelector::Private::pageToShow() const
{
    const QPointer<QWidget> form = boardForms.value(shown);
    for (const Page &page : pages) {
        if (form && page.form == form)
            return page.holder;
    }
    return nullptr;
}

void FormSelector::Private::dropDeadPages()
{
    const auto isAlive = [](const Page &page) { return page.isAlive(); };
    const auto firstDead = std::stable_partition(pages.begin(), pages.end(), isAlive);
    const QVector<Page> dead(firstDead, pages.end());
    pages.erase(firstDead, pages.end());
    for (const Page &page : dead) {
        if (page.form)
            page.form->removeEventFilter(q);
        // When its current page is deleted, a stack shows the neighbour.
        if (page.holder && page.holder == stack->currentWidget())
            stack->setCurrentWidget(emptyPage);
        delete page.holder;
    }
}

QList<QWidget *> FormSelector::getWidgetList() const
{
    QList<QWidget *> forms;
    for (const Private::Page &page : std::as_const(d->pages)) {
        if (page.isAlive())
            forms << page.form;
    }
    std::sort(forms.begin(), forms.end(), std::less<QWidget *>());
    return forms;
}

QString FormSelector::getStockId() const
{
    return QString::number(d->current.stock_id);
}

QString FormSelector::getBoardId() const
{
    return QString::number(d->current.board_id);
}

void FormSelector::setStockId(const QString &text)
{
    const qint32 id = text.toInt();
    if (id == d->current.stock_id)
        return;
    d->current.stock_id = id;
    setWidget(d->current);
}

void FormSelector::setBoardId(const QString &text)
{
    const qint32 id = text.toInt();
    if (id == d->current.board_id)
        return;
    d->current.board_id = id;
    setWidget(d->current);
}

void FormSelector::setWidget(boardid board)
{
    d->shown = board;
    if (d->moving)
        return;
    const QPointer<FormSelector> alive(this);
    const QPointer<QWidget> page = d->moveBindings();
    if (alive)
        d->stack->setCurrentWidget(page ? page.data() : d->emptyPage);
}

// Binds the page of the shown board and no other, and returns it. A control that is bound may ask
// for another board, page or hub, throw, or destroy the page or the selector. Pages that send each
// other away in a ring are given up, unbound, when each could have had a turn.
QPointer<QWidget> FormSelector::Private::moveBindings()
{
    const QPointer<FormSelector> alive(q);
    QPointer<Properties> turnsHub;
    QPointer<QWidget> page;
    const auto isOutdated = [&] { return turnsHub != hub || page != pageToShow(); };
    int turns = pages.size() + 1;
    const Doing program(Doing::Program);
    moving = true;
    do {
        turnsHub = hub;
        page = pageToShow();
        unbindPages(turnsHub);
        try {
            if (turnsHub && turnsHub->connectAll(page) && page && !isOutdated())
                reportSums(page);
        } catch (...) {
            if (alive) {
                moving = false;
                unbindPages(turnsHub);
                stack->setCurrentWidget(emptyPage);
            }
            throw;
        }
        if (!alive)
            return nullptr;
        if (turnsHub != hub)
            unbindPages(turnsHub);
    } while (isOutdated() && --turns > 0);
    moving = false;
    if (isOutdated()) {
        qWarning() << "FormSelector::setWidget: the sub-forms send each other away";
        unbindPages(hub);
        return nullptr;
    }
    return page;
}

void FormSelector::Private::unbindPages(Properties *properties)
{
    if (!properties)
        return;
    for (const Page &page : std::as_const(pages))
        properties->disconnectAll(page.holder);
}

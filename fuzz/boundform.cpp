#include "boundform.h"

#include "formtexts.h"

#include <embeddedhost/embeddedhost.h>
#include <formkit/boardselectorbox.h>
#include <formkit/boardselectormodel.h>
#include <formkit/checkbox.h>
#include <formkit/dateedit.h>
#include <formkit/decimalvalidator.h>
#include <formkit/formselector.h>
#include <formkit/lineedit.h>
#include <formkit/quantityeditor.h>
#include <formkit/radiobutton.h>
#include <formkit/securityselectorbox.h>
#include <formkit/securityselectormodel.h>
#include <formkit/stockselectorbox.h>
#include <formkit/stockselectormodel.h>
#include <formkit/summator.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QCalendarWidget>
#include <QClipboard>
#include <QCompleter>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSortFilterProxyModel>
#include <QStackedLayout>
#include <QVBoxLayout>

namespace {

void sendKey(QWidget *target, int key, const QString &text)
{
    const auto modifiers = Qt::KeyboardModifiers(key & int(Qt::KeyboardModifierMask));
    const int plain = key & ~int(Qt::KeyboardModifierMask);
    const QPointer<QWidget> alive(target);
    QKeyEvent press(QEvent::KeyPress, plain, modifiers, text);
    QApplication::sendEvent(target, &press);
    if (!alive)
        return;
    QKeyEvent release(QEvent::KeyRelease, plain, modifiers, text);
    QApplication::sendEvent(target, &release);
}

void closePopups()
{
    while (QWidget *const popup = QApplication::activePopupWidget())
        popup->close();
}

} // namespace

BoundForm::BoundForm(EmbeddedHost *host, const QString &file)
    : m_host(host), m_file(file), m_locale(FormTexts::locales().first())
{
    new QVBoxLayout(this);
    for (const char *name : {"exchange", "board", "security", "price", "quantity", "total", "till",
                             "till2", "when", "buy", "sell", "hidden", "comment", "mirror"})
        make(name);
    m_details = new FormSelector(this);
    layout()->addWidget(m_details);
    for (const char *name : {"pageA", "pageB"})
        make(name);
    m_hub.connectAll(this);
    m_details->setHub(&m_hub);
    show();
}

template <typename Control>
Control *BoundForm::add(const QString &name, Control *control, const QString &field)
{
    control->setObjectName(name);
    m_controls[name] = control;
    if (!field.isEmpty())
        control->setProperty("field", field);
    if (auto *const editor = qobject_cast<NumberEditor *>(control))
        editor->decimalValidator()->setLocale(QLocale(m_locale));
    auto *const combo = qobject_cast<QComboBox *>(control);
    if (auto *const edit = combo ? combo->lineEdit() : qobject_cast<QLineEdit *>(control))
        connect(edit, &QLineEdit::textEdited, this, [this] { m_edited = true; });
    return control;
}

QWidget *BoundForm::make(const QString &name)
{
    QWidget *made = nullptr;
    if (name == "pageA" || name == "pageB")
        return makePage(name);
    if (name == "exchange")
        made = add(name, new StockSelectorBox(this), {});
    else if (name == "board")
        made = add(name, new BoardSelectorBox(this), {});
    else if (name == "security")
        made = add(name, new SecuritySelectorBox(this), {});
    else if (name == "price")
        made = add(name, new NumberEditor(this), "Price");
    else if (name == "quantity")
        made = add(name, new QuantityEditor(this), "Quantity");
    else if (name == "total")
        made = add(name, new NumberEditor(this, 5), "Total");
    else if (name == "when")
        made = add(name, new LineEdit(this), "GoodTill");
    else if (name.startsWith("till"))
        made = add(name, new DateEdit(this), "GoodTill");
    else if (name == "buy" || name == "sell")
        made = add(name, new RadioButton(this), "Side");
    else if (name == "hidden")
        made = add(name, new CheckBox(this), "Hidden");
    else
        made = add(name, new LineEdit(this), "Comment");
    made->setProperty("value", name == "buy" ? "B" : "S");
    made->setProperty("value_checked", "Y");
    made->setProperty("value_unchecked", "N");
    if (auto *const comment = name == "comment" ? qobject_cast<QLineEdit *>(made) : nullptr)
        comment->setMaxLength(8);
    if (auto *const output =
            name == "total" || name == "when" ? qobject_cast<QLineEdit *>(made) : nullptr)
        output->setReadOnly(true);
    layout()->addWidget(made);
    return made;
}

QWidget *BoundForm::makePage(const QString &name)
{
    QWidget *const page = add(name, new QWidget, {});
    auto *const column = new QVBoxLayout(page);
    if (name == "pageA") {
        column->addWidget(add("noteA", new LineEdit, "Note"));
        column->addWidget(add("offset", new NumberEditor(nullptr, 5), "Offset"));
        auto *const sum = new Summator(page);
        sum->setProperty("fields", "Price=Summand Offset=Addendum Total=Value");
        page->setProperty("boards", "1,1;1,2");
    } else {
        column->addWidget(add("noteB", new LineEdit, "Note"));
        column->addWidget(add("price2", new NumberEditor, "Price"));
        column->addWidget(add("remark", new LineEdit, "Remark"));
        page->setProperty("boards", "1,3;2,1");
    }
    m_details->addPage(page);
    return page;
}

ComboBox *BoundForm::box(const QString &name) const
{
    return qobject_cast<ComboBox *>(control(name));
}

QString BoundForm::shown(const QString &name) const
{
    if (auto *const button = qobject_cast<QAbstractButton *>(control(name)))
        return button->isChecked() ? "x" : "";
    if (auto *const combo = qobject_cast<QComboBox *>(control(name)))
        return combo->currentText();
    auto *const edit = qobject_cast<QLineEdit *>(control(name));
    return edit ? edit->text() : QString();
}

QStringList BoundForm::listed(const QString &name) const
{
    QStringList names;
    for (int row = 0; row < box(name)->count(); ++row)
        names << box(name)->itemText(row);
    return names;
}

QString BoundForm::page() const
{
    for (const char *name : {"pageA", "pageB"}) {
        if (control(name) && control(name)->isVisible())
            return name;
    }
    return {};
}

QString BoundForm::focused()
{
    // The offscreen platform leaves the activation with a pop-up that has been closed.
    QApplication::setActiveWindow(this);
    const QWidget *const widget = focusWidget();
    return widget && widget->hasFocus() ? widget->objectName() : QString();
}

bool BoundForm::load(int edition)
{
    return m_host->loadNow(m_file + QString::number(edition));
}

void BoundForm::refresh(const QString &name)
{
    QAbstractItemModel *const source =
        static_cast<QSortFilterProxyModel *>(box(name)->model())->sourceModel();
    if (auto *const stocks = qobject_cast<StockSelectorModel *>(source))
        stocks->populate();
    else if (auto *const boards = qobject_cast<BoardSelectorModel *>(source))
        boards->populate();
    else
        qobject_cast<SecuritySelectorModel *>(source)->populate();
}

void BoundForm::create(const QString &name)
{
    QWidget *const made = make(name);
    if (!name.startsWith("page"))
        m_hub.connectAll(made);
}

void BoundForm::setLocale(const QString &locale)
{
    m_locale = locale;
    for (QWidget *each : qAsConst(m_controls)) {
        if (auto *const editor = qobject_cast<NumberEditor *>(each))
            editor->decimalValidator()->setLocale(QLocale(locale));
    }
}

void BoundForm::focus(const QString &name, Qt::FocusReason reason) const
{
    control(name)->setFocus(reason);
}

void BoundForm::press(const QString &name, int key, const QString &text, bool stays) const
{
    sendKey(control(name), key, text);
    if (!stays)
        closePopups();
}

void BoundForm::paste(const QString &name, const QString &text) const
{
    QApplication::clipboard()->setText(text);
    sendKey(control(name), Qt::CTRL + Qt::Key_V, {});
    closePopups();
}

void BoundForm::choose(const QString &name, int row) const
{
    ComboBox *const chosen = box(name);
    chosen->showPopup();
    chosen->view()->setCurrentIndex(chosen->model()->index(row, 0));
    sendKey(chosen->view(), Qt::Key_Return, {});
    closePopups();
}

void BoundForm::complete(const QString &name, int place) const
{
    QAbstractItemView *const list = box(name)->completer()->popup();
    while (place-- > 0)
        sendKey(list, Qt::Key_Down, {});
    sendKey(list, Qt::Key_Return, {});
    closePopups();
}

void BoundForm::pick(const QString &name, const QDate &day) const
{
    qobject_cast<DateEdit *>(control(name))->showPopup();
    auto *const calendar = qobject_cast<QCalendarWidget *>(QApplication::activePopupWidget());
    calendar->setSelectedDate(day);
    sendKey(calendar->findChild<QAbstractItemView *>(), Qt::Key_Return, {});
    closePopups();
}

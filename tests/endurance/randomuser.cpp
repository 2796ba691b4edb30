#include "randomuser.h"

#include "orderwindow.h"

#include <QApplication>
#include <QClipboard>
#include <QInputMethodEvent>
#include <QMouseEvent>
#include <QWheelEvent>

#include <array>

namespace {

struct Key
{
    int key;
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;
};

constexpr Key controlKeys[]{
    {Qt::Key_Tab},
    {Qt::Key_Tab},
    {Qt::Key_Backtab, Qt::ShiftModifier},
    {Qt::Key_Return},
    {Qt::Key_Escape},
    {Qt::Key_Backspace},
    {Qt::Key_Backspace},
    {Qt::Key_Delete},
    {Qt::Key_Left},
    {Qt::Key_Right},
    {Qt::Key_Left, Qt::ShiftModifier},
    {Qt::Key_Up},
    {Qt::Key_Down},
    {Qt::Key_Down, Qt::AltModifier},
    {Qt::Key_Home},
    {Qt::Key_End},
    {Qt::Key_PageUp},
    {Qt::Key_PageDown},
    {Qt::Key_F4},
    {Qt::Key_A, Qt::ControlModifier},
    {Qt::Key_C, Qt::ControlModifier},
    {Qt::Key_V, Qt::ControlModifier},
    {Qt::Key_X, Qt::ControlModifier},
    {Qt::Key_Z, Qt::ControlModifier},
    {Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier},
};

constexpr const char *texts[]{"",       "0",          "-1",     "1234567.25", "1,5",
                              "1 000",  "1e9",        "abc",    "31.12.2035", "12/31/35",
                              "999999", "2035-12-31", "\u0663", "\u2212 5",   "\u4ea4\u6613"};

// What has the keys: a pop-up, or else the focus.
QWidget *keyTarget()
{
    QWidget *popup = QApplication::activePopupWidget();
    if (popup)
        return popup->focusWidget() ? popup->focusWidget() : popup;
    return QApplication::focusWidget();
}

} // namespace

RandomUser::RandomUser(OrderWindow *window, quint32 seed) : m_window(window), m_random(seed) {}

void RandomUser::act()
{
    const int choice = below(100);
    if (choice < 75)
        pressKey();
    else if (choice < 77)
        compose();
    else if (choice < 92)
        click();
    else if (choice < 95)
        turnWheel();
    else if (choice < 97)
        QApplication::clipboard()->setText(text());
    else
        setValue();
}

void RandomUser::pressKey()
{
    static const QString letters = QStringLiteral("0123456789012345678901234567890,.- 'abcdefgs");
    Key key{0};
    QString text;
    if (below(3) > 0) {
        text = letters.at(below(int(letters.size())));
        key.key = text.at(0).toUpper().unicode();
    } else {
        key = controlKeys[below(int(std::size(controlKeys)))];
    }
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key.key, key.modifiers, text);
        if (QWidget *target = keyTarget())
            QApplication::sendEvent(target, &event);
    }
}

void RandomUser::compose()
{
    QInputMethodEvent event;
    event.setCommitString(text());
    if (QWidget *target = keyTarget())
        QApplication::sendEvent(target, &event);
}

void RandomUser::click()
{
    QWidget *popup = QApplication::activePopupWidget();
    if (popup && below(4) == 0) {
        popup->close(); // as a click beside it does
        return;
    }
    QPointer<QWidget> target = anyWidget();
    if (!target || target->width() < 1 || target->height() < 1)
        return;
    const QPoint at(below(target->width()), below(target->height()));
    if (!popup && target->focusPolicy() & Qt::ClickFocus)
        target->setFocus(Qt::MouseFocusReason);
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        if (!target)
            return;
        const Qt::MouseButtons held =
            type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
        QMouseEvent event(type, at, target->mapToGlobal(at), Qt::LeftButton, held, Qt::NoModifier);
        QApplication::sendEvent(target, &event);
    }
}

void RandomUser::turnWheel()
{
    QWidget *target = anyWidget();
    if (!target)
        return;
    const QPoint at = target->rect().center();
    QWheelEvent event(at, target->mapToGlobal(at), QPoint(), QPoint(0, below(2) ? 120 : -120),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(target, &event);
}

void RandomUser::setValue()
{
    Properties *hub = m_window->hub();
    const QStringList names = hub->values().keys();
    if (below(5) == 0)
        m_window->fill(hub->values());
    else if (!names.isEmpty())
        hub->setValue(names.at(below(int(names.size()))), text());
}

QString RandomUser::text()
{
    return QString::fromUtf8(texts[below(int(std::size(texts)))]);
}

// In the pop-up, if there is one. The button of the statements stays alone: it asks for a server.
QWidget *RandomUser::anyWidget()
{
    QWidget *top = QApplication::activePopupWidget();
    if (!top)
        top = m_window;
    QList<QWidget *> found;
    const QList<QWidget *> children = top->findChildren<QWidget *>();
    for (QWidget *child : children) {
        if (child->isVisible() && child->isEnabled() && child->window() == top &&
            child->objectName() != QLatin1String("statements"))
            found << child;
    }
    return found.isEmpty() ? nullptr : found.at(below(int(found.size())));
}

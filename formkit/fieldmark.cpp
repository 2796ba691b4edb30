// SPDX-License-Identifier: BSD-3-Clause
#include "fieldmark_p.h"

#include "errorcolor_p.h"

#include <QAccessible>
#include <QComboBox>
#include <QEvent>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QPainter>
#include <QStyle>

namespace {

constexpr int Gap = 3;

QLineEdit *editOf(QWidget *control)
{
    auto *const box = qobject_cast<QComboBox *>(control);
    return box ? box->lineEdit() : qobject_cast<QLineEdit *>(control);
}

// A click on a sign may be what removes it.
template <typename Widget> void drop(QPointer<Widget> *widget)
{
    if (!*widget)
        return;
    (*widget)->hide();
    (*widget)->deleteLater();
    widget->clear();
}

bool isRightToLeft(const QWidget *widget)
{
    return widget->layoutDirection() == Qt::RightToLeft;
}

// The side of a line edit on which its text does not begin. The text's own direction decides.
bool isRightFree(const QLineEdit *edit)
{
    const bool isMirrored =
        edit->text().isEmpty() ? isRightToLeft(edit) : edit->text().isRightToLeft();
    const Qt::Alignment side =
        QStyle::visualAlignment(isMirrored ? Qt::RightToLeft : Qt::LeftToRight, edit->alignment());
    return side & Qt::AlignHCenter ? !isRightToLeft(edit) : !(side & Qt::AlignRight);
}

// Where a button's text ends, or the text of a box that cannot be edited.
int endOfText(QWidget *control, int sign)
{
    const int end = qobject_cast<QComboBox *>(control)
                        ? control->width() - 2 * control->fontMetrics().height()
                        : control->sizeHint().width() + Gap;
    return qMin(end, control->width() - sign);
}

} // namespace

FieldSign::FieldSign(Kind kind, QWidget *field, QWidget *host)
    : QWidget(host), m_kind(kind), m_field(field)
{
    setCursor(Qt::ArrowCursor);
    resize(extentOf(kind, field), extentOf(kind, field));
    show();
}

int FieldSign::extentOf(Kind kind, const QWidget *field)
{
    const int text = field->fontMetrics().ascent();
    return kind == Error ? text + 2 : qMax(5, text / 2);
}

void FieldSign::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QRectF all = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    if (m_kind == Changed) {
        painter.setBrush(palette().highlight());
        painter.drawEllipse(all.adjusted(0.5, 0.5, -0.5, -0.5));
        return;
    }
    const QColor red = errorColor(palette());
    painter.setBrush(red);
    painter.drawEllipse(all);
    // An exclamation mark, in whichever of white and black stands out.
    painter.setBrush(contrastOf(red, Qt::white) > contrastOf(red, Qt::black) ? Qt::white
                                                                             : Qt::black);
    const qreal unit = all.height() / 12;
    const qreal middle = all.center().x();
    painter.drawRoundedRect(QRectF(middle - unit, all.top() + 2.2 * unit, 2 * unit, 4.8 * unit),
                            unit, unit);
    painter.drawEllipse(QRectF(middle - unit, all.top() + 7.8 * unit, 2 * unit, 2 * unit));
}

void FieldSign::mousePressEvent(QMouseEvent *)
{
    m_field->setFocus(Qt::MouseFocusReason);
}

FieldMark::FieldMark(QWidget *control) : QObject(control), m_control(control)
{
    control->installEventFilter(this);
}

FieldMark::~FieldMark()
{
    delete m_error;
    delete m_change;
    delete m_line;
}

QWidget *FieldMark::host() const
{
    QWidget *const edit = editOf(m_control);
    return edit ? edit : m_control;
}

void FieldMark::setRequired(const QString &caption)
{
    const QString name = caption.isEmpty() ? QString() : tr("%1, required").arg(caption);
    if (name == m_required)
        return;
    if (m_required.isEmpty())
        m_ownName = m_control->accessibleName();
    m_required = name;
    m_control->setAccessibleName(name.isEmpty() ? m_ownName : name);
}

void FieldMark::setReason(const QString &reason, const QString &preface)
{
    const bool isOther = reason != m_reason;
    m_reason = reason;
    m_preface = preface;
    if (reason.isEmpty()) {
        drop(&m_error);
        drop(&m_line);
    } else {
        if (!m_error)
            m_error = new FieldSign(FieldSign::Error, m_control, host());
        m_error->setToolTip(reason);
        if (QWidget *const form = m_control->parentWidget())
            form->installEventFilter(this);
        place();
    }
    describe();
    if (reason.isEmpty() || !isOther)
        return;
    QAccessibleEvent alert(m_control, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void FieldMark::setChanged(bool isChanged)
{
    if (isChanged == !m_change.isNull())
        return;
    if (isChanged) {
        m_change = new FieldSign(FieldSign::Changed, m_control, host());
        m_change->setToolTip(tr("Changed"));
        place();
    } else {
        drop(&m_change);
    }
    describe();
}

// QWidget announces a description that changes.
void FieldMark::describe()
{
    if (m_control->accessibleDescription() != m_description)
        m_ownDescription = m_control->accessibleDescription();
    QStringList parts;
    if (!m_reason.isEmpty())
        parts << m_preface << tr("Not valid: %1").arg(m_reason);
    if (m_change)
        parts << tr("Changed");
    parts << m_ownDescription;
    parts.removeAll(QString());
    m_description = parts.join(QLatin1String(". "));
    for (QWidget *widget : {m_control, host()}) {
        if (widget->accessibleDescription() != m_description)
            widget->setAccessibleDescription(m_description);
    }
}

void FieldMark::place()
{
    if (m_error)
        placeError();
    if (m_change)
        m_change->move(isRightToLeft(m_control) ? host()->width() - m_change->width() : 0, 0);
    if (!m_reason.isEmpty())
        placeLine();
}

void FieldMark::placeError()
{
    const QLineEdit *const edit = editOf(m_control);
    const QRect area = host()->rect();
    const int middle = area.center().y() + 1 - m_error->height() / 2;
    if (!edit) {
        const int end = endOfText(m_control, m_error->width());
        const int mirrored = area.width() - m_error->width() - end;
        m_error->move(isRightToLeft(m_control) ? mirrored : end, middle);
        return;
    }
    const QMargins margins = edit->textMargins();
    const int right = area.width() - margins.right() - m_error->width() - Gap;
    m_error->move(isRightFree(edit) ? right : margins.left() + Gap, middle);
}

// The form has room where a line of text fits between the control and what stands below.
void FieldMark::placeLine()
{
    QWidget *const form = m_control->parentWidget();
    const QRect field = m_control->geometry();
    const QRect room(field.left(), field.bottom() + 1, field.width(),
                     m_control->fontMetrics().height());
    bool isFree = form && form->rect().contains(room) && m_control->isVisible();
    const QList<QWidget *> others =
        form ? form->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly)
             : QList<QWidget *>();
    for (const QWidget *other : others)
        isFree &= other == m_line || other->isHidden() || !other->geometry().intersects(room);
    if (!isFree) {
        hideLine();
        return;
    }
    if (!m_line) {
        m_line = new QLabel(form);
        m_line->setTextFormat(Qt::PlainText);
        QPalette palette = m_line->palette();
        palette.setColor(QPalette::WindowText, errorColor(palette, QPalette::Window));
        m_line->setPalette(palette);
    }
    m_line->setText(m_line->fontMetrics().elidedText(m_reason, Qt::ElideRight, room.width()));
    m_line->setGeometry(room);
    m_line->show();
}

// Qt may be walking through the form's widgets, so the line stays one of them.
void FieldMark::hideLine()
{
    if (m_line)
        m_line->hide();
}

bool FieldMark::eventFilter(QObject *watched, QEvent *event)
{
    const bool isLaidOut =
        event->type() == QEvent::LayoutRequest || event->type() == QEvent::Resize;
    if (watched != m_control) {
        // What stands below may move without the control.
        if (isLaidOut && !m_reason.isEmpty())
            placeLine();
        return false;
    }
    switch (event->type()) {
    case QEvent::Resize:
    case QEvent::Move:
    case QEvent::Show:
    case QEvent::LayoutDirectionChange:
    case QEvent::FontChange:
        place();
        break;
    case QEvent::Hide:
        hideLine();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

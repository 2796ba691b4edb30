#include "formselectorpages.h"

#include "controls.h"

#include <formkit/formselector.h>

#include <QDesignerDynamicPropertySheetExtension>
#include <QExtensionManager>
#include <QStackedLayout>
#include <QVariant>

namespace {

// The selector's own empty page stands in front of the form's.
constexpr int firstPage = 1;

} // namespace

FormSelectorPages::FormSelectorPages(FormSelector *selector, QExtensionManager *manager,
                                     QObject *parent)
    : QObject(parent)
    , m_stack(qobject_cast<QStackedLayout *>(selector->layout()))
    , m_manager(manager)
{
    connect(m_stack, &QStackedLayout::currentChanged, this, &FormSelectorPages::keepPage);
}

int FormSelectorPages::count() const
{
    return m_stack->count() - firstPage;
}

QWidget *FormSelectorPages::widget(int index) const
{
    return index < 0 ? nullptr : m_stack->widget(index + firstPage);
}

int FormSelectorPages::currentIndex() const
{
    return m_stack->currentIndex() - firstPage;
}

void FormSelectorPages::setCurrentIndex(int index)
{
    m_stack->setCurrentIndex(index + firstPage);
}

void FormSelectorPages::addWidget(QWidget *page)
{
    m_stack->addWidget(page);
    if (count() == 1)
        setCurrentIndex(0);
}

void FormSelectorPages::insertWidget(int index, QWidget *page)
{
    m_stack->insertWidget(index + firstPage, page);
    setCurrentIndex(index);
    auto *sheet = qt_extension<QDesignerDynamicPropertySheetExtension *>(m_manager, page);
    const QString boards = QString::fromLatin1(boardsProperty().name);
    if (sheet && sheet->canAddDynamicProperty(boards))
        sheet->addDynamicProperty(boards, QVariant(QString()));
}

void FormSelectorPages::remove(int index)
{
    m_stack->removeWidget(widget(index));
}

// A change of the selector's ids shows its empty page.
void FormSelectorPages::keepPage(int stackIndex)
{
    if (stackIndex >= firstPage)
        m_current = m_stack->widget(stackIndex);
    else if (m_current && m_stack->indexOf(m_current) >= firstPage)
        m_stack->setCurrentWidget(m_current);
}

// SPDX-License-Identifier: BSD-3-Clause
#include "designedformselector.h"

#include <QStackedLayout>

namespace {

// Before it comes the selector's own empty page.
constexpr int firstPage = 1;

} // namespace

DesignedFormSelector::DesignedFormSelector(QWidget *parent)
    : FormSelector(parent), m_stack(qobject_cast<QStackedLayout *>(layout()))
{
    connect(m_stack, &QStackedLayout::currentChanged, this, &DesignedFormSelector::keepPage);
}

void DesignedFormSelector::addPage(QWidget *page)
{
    m_stack->addWidget(page);
    if (count() == 1)
        setCurrentIndex(0);
}

void DesignedFormSelector::insertPage(int index, QWidget *page)
{
    m_stack->insertWidget(index + firstPage, page);
    setCurrentIndex(index);
}

void DesignedFormSelector::removePage(int index)
{
    m_stack->removeWidget(page(index));
}

int DesignedFormSelector::count() const
{
    return m_stack->count() - firstPage;
}

QWidget *DesignedFormSelector::page(int index) const
{
    return index < 0 ? nullptr : m_stack->widget(index + firstPage);
}

int DesignedFormSelector::currentIndex() const
{
    return m_stack->currentIndex() - firstPage;
}

void DesignedFormSelector::setCurrentIndex(int index)
{
    m_stack->setCurrentIndex(index + firstPage);
}

// Shows the page again when the base has shown its empty one, after a change of an id.
void DesignedFormSelector::keepPage(int stackIndex)
{
    if (stackIndex >= firstPage)
        m_current = m_stack->widget(stackIndex);
    else if (m_current && m_stack->indexOf(m_current) >= firstPage)
        m_stack->setCurrentWidget(m_current);
}

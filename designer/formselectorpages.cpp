// SPDX-License-Identifier: BSD-3-Clause
#include "formselectorpages.h"

#include "controls.h"

#include <QDesignerDynamicPropertySheetExtension>
#include <QDesignerPropertySheetExtension>
#include <QExtensionManager>
#include <QVariant>

FormSelectorPages::FormSelectorPages(DesignedFormSelector *selector, QExtensionManager *manager,
                                     QObject *parent)
    : QObject(parent), m_selector(selector), m_manager(manager)
{
}

void FormSelectorPages::insertWidget(int index, QWidget *page)
{
    m_selector->insertPage(index, page);
    auto *sheet = qt_extension<QDesignerPropertySheetExtension *>(m_manager, page);
    auto *dynamic = qt_extension<QDesignerDynamicPropertySheetExtension *>(m_manager, page);
    const QString boards = QString::fromLatin1(boardsProperty().name);
    // Without a command, as it comes and goes with the page.
    if (dynamic->canAddDynamicProperty(boards))
        sheet->setProperty(dynamic->addDynamicProperty(boards, QByteArray()), QByteArray());
}

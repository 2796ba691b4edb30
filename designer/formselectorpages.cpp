#include "formselectorpages.h"

#include "controls.h"

#include <QDesignerDynamicPropertySheetExtension>
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
    auto *sheet = qt_extension<QDesignerDynamicPropertySheetExtension *>(m_manager, page);
    const QString boards = QString::fromLatin1(boardsProperty().name);
    if (sheet && sheet->canAddDynamicProperty(boards))
        sheet->addDynamicProperty(boards, QByteArray());
}

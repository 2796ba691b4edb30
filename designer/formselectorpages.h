// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "designedformselector.h"

#include <QDesignerContainerExtension>
#include <QObject>

class QExtensionManager;

/// Gives Designer access to the pages of a FormSelector.
class FormSelectorPages : public QObject, public QDesignerContainerExtension
{
    Q_OBJECT
    Q_INTERFACES(QDesignerContainerExtension)

public:
    FormSelectorPages(DesignedFormSelector *selector, QExtensionManager *manager, QObject *parent);

    int count() const override { return m_selector->count(); }
    QWidget *widget(int index) const override { return m_selector->page(index); }
    int currentIndex() const override { return m_selector->currentIndex(); }
    void setCurrentIndex(int index) override { m_selector->setCurrentIndex(index); }
    void addWidget(QWidget *page) override { m_selector->addPage(page); }
    /// Gives a new page an empty property "boards".
    void insertWidget(int index, QWidget *page) override;
    /// Asked for by Qt 6's Designer only.
    virtual bool canAddWidget() const { return true; }
    virtual bool canRemove(int) const { return true; }
    void remove(int index) override { m_selector->removePage(index); }

private:
    DesignedFormSelector *m_selector;
    QExtensionManager *m_manager;
};

// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "controls.h"

#include <QtUiPlugin/QDesignerCustomWidgetInterface>

/// Describes a control to Qt Designer and QUiLoader, and makes it.
class CustomWidget : public QDesignerCustomWidgetInterface
{
public:
    explicit CustomWidget(const Control &control) : m_control(control) {}

    QString name() const override { return m_control.name(); }
    QString group() const override { return m_control.group; }
    QString toolTip() const override { return m_control.toolTip; }
    QString whatsThis() const override { return m_control.whatsThis; }
    QString includeFile() const override { return m_control.header; }
    QIcon icon() const override;
    bool isContainer() const override { return m_control.isContainer; }
    QWidget *createWidget(QWidget *parent) override;
    QString domXml() const override { return m_control.domXml(); }

    /// Only Designer calls this. Registers task menus and pages, once for all controls.
    void initialize(QDesignerFormEditorInterface *core) override;

private:
    const Control &m_control;
    bool m_isDesigning = false;
};

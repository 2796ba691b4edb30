// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "controls.h"

#include <QtUiPlugin/QDesignerCustomWidgetInterface>

/// What Qt Designer and QUiLoader are told of one control of the list.
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

    /// Called by Designer alone. Gives it the task menus and the pages, once for all controls.
    void initialize(QDesignerFormEditorInterface *core) override;

private:
    const Control &m_control;
    bool m_isDesigning = false;
};

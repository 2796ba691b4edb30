// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formselector.h>

#include <QPointer>

class QStackedLayout;

/// A FormSelector while it is designed, and in Designer's preview. Its pages fill it, so that they
/// can be drawn on, and are shown whatever the current board is. (It bears the name of its base:
/// that is the class that the form file is to hold.)
class DesignedFormSelector : public FormSelector
{
public:
    explicit DesignedFormSelector(QWidget *parent);

    void addPage(QWidget *page) override;
    void insertPage(int index, QWidget *page);
    void removePage(int index);

    int count() const;
    /// Null where there is none.
    QWidget *page(int index) const;
    /// -1 while there is no page.
    int currentIndex() const;
    void setCurrentIndex(int index);

private:
    void keepPage(int stackIndex);

    QStackedLayout *m_stack;
    /// The page that is designed.
    QPointer<QWidget> m_current;
};

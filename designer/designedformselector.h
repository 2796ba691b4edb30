// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formselector.h>

#include <QPointer>

class QStackedLayout;

/// A FormSelector in Designer and in its preview. A page fills it, so that it can be drawn on, and
/// is shown whatever the current board is. (For Designer it has the name of its base class, which
/// is the one that the form file needs.)
class DesignedFormSelector : public FormSelector
{
public:
    explicit DesignedFormSelector(QWidget *parent);

    void addPage(QWidget *page) override;
    void insertPage(int index, QWidget *page);
    void removePage(int index);

    int count() const;
    /// The page at an index, or null.
    QWidget *page(int index) const;
    /// The index of the page that is designed; -1 if there is no page.
    int currentIndex() const;
    void setCurrentIndex(int index);

private:
    void keepPage(int stackIndex);

    QStackedLayout *m_stack;
    /// The page that is being designed.
    QPointer<QWidget> m_current;
};

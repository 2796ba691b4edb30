#pragma once

#include <QDesignerContainerExtension>
#include <QPointer>

class FormSelector;
class QExtensionManager;
class QStackedLayout;

// The pages of a FormSelector while it is designed. They fill the selector, which is to be drawn
// on, and are shown whatever the current board is.
class FormSelectorPages : public QObject, public QDesignerContainerExtension
{
    Q_OBJECT
    Q_INTERFACES(QDesignerContainerExtension)

public:
    FormSelectorPages(FormSelector *selector, QExtensionManager *manager, QObject *parent);

    int count() const override;
    QWidget *widget(int index) const override;
    int currentIndex() const override;
    void setCurrentIndex(int index) override;
    void addWidget(QWidget *page) override;
    // A page that is new gets its property "boards", to be filled in.
    void insertWidget(int index, QWidget *page) override;
    void remove(int index) override;

private:
    void keepPage(int stackIndex);

    QStackedLayout *m_stack;
    QExtensionManager *m_manager;
    // The page that is designed.
    QPointer<QWidget> m_current;
};

// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>
#include <hostapi/boardid.h>

#include <QList>
#include <QWidget>

#include <memory>

class Properties;

/// Shows one of several sub-forms, that of the trading board that is being entered, and keeps the
/// hub bound to that one alone. docs/hub.md has the rules in full.
///
/// - A connectAll() over the enclosing form binds `StockId` and `BoardId`; from then on the
///   selector follows the form's values. A board without a sub-form shows an empty page.
/// - A sub-form that is shown takes the values that the hub holds under its names, and gives the
///   hub those that are new. All values stay in the hub when it leaves.
/// - Sub-forms may be added before or after connectAll(). Call setHub() after it if hidden
///   sub-forms hold members that report by themselves, such as a Summator.
/// - The tab order goes through the controls of the sub-forms where the selector stands.
/// - Without a hub it only shows. Hub and sub-forms may be destroyed at any time.
class FORMKIT_EXPORT FormSelector : public QWidget
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "this")
    Q_PROPERTY(QString StockId READ getStockId WRITE setStockId)
    Q_PROPERTY(QString BoardId READ getBoardId WRITE setBoardId)

public:
    explicit FormSelector(QWidget *parent = nullptr);
    /// With a hub (not owned), as setHub() takes it.
    explicit FormSelector(Properties *hub, QWidget *parent = nullptr);
    ~FormSelector() override;

    /// Hands the sub-forms over to another hub (not owned; may be null): unbinds all of them from
    /// the former hub and from this one, then binds the one that is shown.
    void setHub(Properties *hub);

    /// Registers a sub-form for a board, in place of the one that the board had, and takes
    /// ownership. One sub-form may serve several boards. It stands at the top of its page; if it
    /// has a layout, that layout's margins become 3 above and 2 below. The sub-form of the current
    /// board is shown and bound at once. A null sub-form is ignored.
    void addWidget(boardid board, QWidget *form);
    /// Adds a page of a form file as the sub-form of the boards that its dynamic property "boards"
    /// lists, written as boardListToString() does ("1,7;2,3"). The property may change later. A
    /// text that is no such list serves no board, with a warning. A null page is ignored. (A form
    /// designer overrides this, to show pages of any board.)
    Q_INVOKABLE virtual void addPage(QWidget *page);
    /// The sub-forms, each once, ordered by address.
    QList<QWidget *> getWidgetList() const;

    /// The ids of the current board as decimal text, "0" at first.
    QString getStockId() const;
    QString getBoardId() const;
    /// Sets one id of the current board and shows the board's sub-form. A text that is no number
    /// counts as 0. Nothing happens when the id is the current one.
    void setStockId(const QString &text);
    void setBoardId(const QString &text);

    /// Shows the sub-form of a board and moves the bindings to it, whatever the ids say. All other
    /// sub-forms are unbound, since a connectAll() may have bound hidden ones, too. The Summators
    /// of the new one report, since a sum may have changed while its page was hidden.
    ///
    /// A control that is bound may call this, setHub() or addWidget(); it takes effect when the
    /// bindings have moved. When sub-forms send each other away in a ring, the empty page is shown,
    /// with a warning. When a control throws, the exception passes through, the empty page is
    /// shown, and nothing is bound until the next change of board.
    void setWidget(boardid board);

    /// Notices when a page's "boards" change.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

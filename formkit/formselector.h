// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>
#include <hostapi/boardid.h>

#include <QList>
#include <QWidget>

#include <memory>

class Properties;

/// Shows the sub-form of the trading board that is being entered, out of several, and keeps
/// the hub bound to that one alone. A connectAll() over the enclosing form binds `StockId` and
/// `BoardId`; from then on the sub-form follows the form's values. A board without a sub-form
/// shows an empty page.
///
/// A sub-form that is shown takes over the values that the hub holds under its names and gives
/// the hub those that it introduces; all values stay in the hub when it leaves. What is left
/// of a sub-form that is not shown is what disconnectAll() leaves: controls with a "field" or
/// "fields" of their own still receive, so they are up to date, but the hub does not listen to
/// them; a control whose class hands its binding over to its base ("super") stays bound in
/// both directions. Coming back adds no second binding.
///
/// Sub-forms may be added before or after the connectAll() over the enclosing form. It binds
/// what is there already, shown or not, and makes its names known to FormValidation at one go;
/// the next change of board, or setHub() with the same hub, then leaves only the shown one
/// bound. Call setHub() after connectAll() if hidden sub-forms hold members that report by
/// themselves, such as a Summator.
///
/// On purpose addWidget() shows a sub-form of the current board at once; each change of board
/// unbinds every sub-form, not the last one alone; and the sums of a sub-form are reported each
/// time it is shown.
///
/// In the tab order the controls of the sub-forms stand where the selector stands, sub-form by
/// sub-form as they were added, each in its own order.
///
/// In a form file the selector is a container whose pages are its sub-forms, each with the
/// dynamic property "boards": the boards that it serves, written as boardListToString() does
/// ("1,7;2,3"). A text that is no such list serves no board, with a warning that names page and
/// text. A page without boards is not shown until addWidget() registers it. The property may be
/// set before or after the page is added, and changed at any time: the boards of the new text
/// replace those of the old. A form file asks for this with
/// `<addpagemethod>addPage</addpagemethod>` in its entry of the class; Qt Designer with formkit's
/// plug-in writes that.
///
/// Without a hub it only shows. Hub and sub-forms may be destroyed at any time, also while the
/// bindings move; a board whose sub-form is gone shows an empty page. An exception that a control
/// throws as it is bound passes through: then the empty page is shown, and nothing is bound, until
/// the next change of board. Sub-forms whose controls answer their binding with a change of board
/// are followed, unless they send each other away in a ring: then the empty page is shown, with a
/// warning.
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

    /// Hands the sub-forms over to another hub (not owned; may be null): all of them are
    /// unbound from the hub they had and from this one, then the shown one is bound.
    void setHub(Properties *hub);

    /// Registers a sub-form for a board, in place of the one that the board had, and takes
    /// ownership. One sub-form may serve several boards. It stands at the top of its page; if
    /// it has a layout, that layout's margins become 3 above and 2 below. The sub-form of the
    /// board that is current is shown and bound at once. A null sub-form is ignored.
    void addWidget(boardid board, QWidget *form);
    /// Adds a page of a form file as a sub-form for its "boards", as addWidget() does for each of
    /// them. A null page is ignored. (A form designer overrides it, to show pages of any board.)
    Q_INVOKABLE virtual void addPage(QWidget *page);
    /// The sub-forms, each once, ordered by address.
    QList<QWidget *> getWidgetList() const;

    /// The ids of the current board as decimal text, "0" at first.
    QString getStockId() const;
    QString getBoardId() const;
    /// Change one id of the current board and show its sub-form. A text that is no number
    /// counts as 0. Nothing happens when the id is the current one.
    void setStockId(const QString &text);
    void setBoardId(const QString &text);

    /// Shows the sub-form of a board and moves the bindings to it, whatever the ids say. A
    /// call that comes while the bindings move (from a control that is bound) takes effect
    /// when they have moved, and so does one of setHub() or addWidget().
    void setWidget(boardid board);

    /// Follows the pages' "boards".
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

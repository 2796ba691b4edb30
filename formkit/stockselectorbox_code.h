// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/selectorbox.h>

/// Selects an exchange by its code, for forms that wire their values by signal and slot: the
/// hub's walk binds nothing here. The list has the exchanges in the host's own order, and the
/// first is current at first, under an empty text. An item's text is the exchange code, its
/// Qt::UserRole data the exchange id (int) and its Qt::UserRole + 1 data the name.
class FORMKIT_EXPORT StockSelectorBox_Code : public SelectorBox
{
    Q_OBJECT

public:
    explicit StockSelectorBox_Code(QWidget *parent = nullptr);

    /// Reads the host's table "stocks" anew, under its lock. The first exchange becomes
    /// current; setProp_StockId("0") is emitted all the same. But an exchange that waited and has
    /// come is chosen, and is what is reported last. What the host throws passes through, with the
    /// lock given back and the list left as it was.
    void populate();

Q_SIGNALS:
    /// The text, after every change of it; empty before that when no exchange has such a code.
    void setProp_Stock(const QString &newValue);
    /// Carries the exchange id, as text, just as setProp_StockId does.
    void setProp_StockCode(const QString &newValue);
    /// "0" when the text is no exchange's code.
    void setProp_StockId(const QString &newValue);

public Q_SLOTS:
    /// Chooses the exchange of an id; one that is not listed waits (see SelectorBox). A text that
    /// is no number counts as 0.
    void prop_StockId_changed(const QString &id);

private Q_SLOTS:
    void edit_changed(const QString &text) override { SelectorBox::edit_changed(text); }
    void item_activated(int index) override;

private:
    void reportNone(const QString &text) override;
    void reportText(const QString &text) override;
};

// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/selectorbox.h>

/// Selects an exchange by its code, for forms that connect their values by signals and slots:
/// Properties::connectAll() binds nothing here. The exchanges are listed in the order of the host's
/// table. At first the first one is current, but the text is empty. An item's text is the code, its
/// Qt::UserRole data the id (int) and its Qt::UserRole + 1 data the name.
class FORMKIT_EXPORT StockSelectorBox_Code : public SelectorBox
{
    Q_OBJECT

public:
    explicit StockSelectorBox_Code(QWidget *parent = nullptr);

    /// Reads the host's table "stocks" again, under its lock. The first exchange becomes current;
    /// setProp_StockId("0") is emitted nevertheless. If an exchange waited that is listed now, that
    /// one is chosen instead, and is reported last. Exceptions of the host pass through; the table
    /// is unlocked then, and the list is as before.
    void populate();

Q_SIGNALS:
    /// The text, after each change of it. If no exchange has such a code, it is emitted with an
    /// empty text first.
    void setProp_Stock(const QString &newValue);
    /// The exchange id as text (not the code), like setProp_StockId.
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

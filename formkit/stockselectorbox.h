// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/selectorbox.h>

class StockSelectorModel;

/// Selects an exchange by its name. Ids are decimal texts, "0" for none.
///
/// - The setters choose a row and report the change, as if the user had chosen it. An id or code
///   that is not listed leaves the choice as it is and waits (see SelectorBox).
/// - Each change of the typed text is reported: as the exchange if the text is exactly its name,
///   otherwise as id "0" and an empty code. The getters ignore letter case.
class FORMKIT_EXPORT StockSelectorBox : public SelectorBox
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "this")
    Q_PROPERTY(QString StockId READ getStockId WRITE setStockId NOTIFY stockIdChanged USER true)
    Q_PROPERTY(QString Stock READ getStock NOTIFY stockChanged)
    Q_PROPERTY(QString StockCode READ getStockCode WRITE setStockCode NOTIFY stockCodeChanged)

public:
    explicit StockSelectorBox(QWidget *parent = nullptr);

    /// Puts another model in place, a subclass with a filter of its own for example. The box
    /// takes it over, populates it and deletes the one before. An exchange that was chosen
    /// stays so if the new model lists it; otherwise the box is empty.
    void setSourceModel(StockSelectorModel *model);

    /// The id of the exchange that the text names, "0" for none.
    QString getStockId() const;
    /// The text as it stands.
    QString getStock() const;
    /// The code of the exchange that the text names, empty for none.
    QString getStockCode() const;

public Q_SLOTS:
    /// A text that is no number counts as 0.
    void setStockId(const QString &id);
    /// Ignores letter case, unless an exchange has exactly this code.
    void setStockCode(const QString &code);

Q_SIGNALS:
    /// The text, after every change of it.
    void stockChanged(const QString &newValue);
    void stockCodeChanged(const QString &newValue);
    void stockIdChanged(const QString &newValue);

private Q_SLOTS:
    void edit_changed(const QString &text) override { SelectorBox::edit_changed(text); }
    void item_activated(int index) override;

private:
    void reportNone(const QString &text) override;
    void reportText(const QString &text) override;
};

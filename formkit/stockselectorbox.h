// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/selectorbox.h>

class StockSelectorModel;

/// Selects an exchange by its name. Ids travel as decimal texts, "0" for none.
///
/// The setters choose a row as a user would: the change is reported. An id or code that is
/// not listed leaves the choice as it is and waits (see SelectorBox). Typing reports after each
/// change of the text: the exchange only when the text is a name letter for letter, otherwise id
/// "0" and an empty code; the getters find a name in any letter case.
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
    /// In any letter case, unless one has it letter for letter.
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

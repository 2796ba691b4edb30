// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/boardselectorfilteredmodel.h>
#include <formkit/selectorbox.h>

class BoardSelectorModel;

/// Selects a trading board of one exchange by the board's name. Ids are decimal texts, "0" for
/// none.
///
/// - Setting another exchange narrows the list and empties the box. A board that is set in the same
///   turn of the event loop, before or after the exchange, is chosen there, or waits (see
///   SelectorBox).
/// - The other setters choose a row and report the change, as if the user had chosen it. A board
///   that is not listed leaves the choice as it is and waits.
/// - Each change of the typed text is reported: as the board if the text is exactly its name,
///   otherwise as id "0" and an empty code. The getters ignore letter case.
class FORMKIT_EXPORT BoardSelectorBox : public SelectorBox
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "thisOnly")
    Q_PROPERTY(QString StockId READ getStockId WRITE setStockId)
    Q_PROPERTY(QString StockCode READ getStockCode WRITE setStockCode)
    Q_PROPERTY(QString BoardId READ getBoardId WRITE setBoardId NOTIFY boardIdChanged USER true)
    Q_PROPERTY(QString Board READ getBoard NOTIFY boardChanged)
    Q_PROPERTY(QString BoardCode READ getBoardCode WRITE setBoardCode NOTIFY boardCodeChanged)

public:
    explicit BoardSelectorBox(QWidget *parent = nullptr);

    /// Puts another model in place, a subclass with a filter of its own for example. The box
    /// takes it over, populates it and deletes the one before. When populating throws, the box
    /// owns the model but goes on with the one before. Null is ignored.
    void setSourceModel(BoardSelectorModel *model);

    /// Conditions on the list; see BoardSelectorFilteredModel. A choice that still fits stays.
    void setSecTypeFilter(const QChar &secType);
    void setBoardFlagsOnFilter(qlonglong boardFlagsOn);
    void setBoardFlagsOffFilter(qlonglong boardFlagsOff);

    /// The exchange whose boards are listed; with an empty code the boards of all are. The id is
    /// that of the code in the host's directory.
    QString getStockId() const;
    void setStockId(const QString &id);
    QString getStockCode() const { return m_place.stockCode; }
    void setStockCode(const QString &code);

    /// The id of the board that the text names, "0" for none.
    QString getBoardId() const;
    void setBoardId(const QString &id);
    /// The text as it stands.
    QString getBoard() const;
    /// The code of the board that the text names, empty for none.
    QString getBoardCode() const;
    /// Ignores letter case, unless a board has exactly this code.
    void setBoardCode(const QString &code);

Q_SIGNALS:
    /// The text, after every change of it.
    void boardChanged(const QString &newValue);
    void boardIdChanged(const QString &newValue);
    void boardCodeChanged(const QString &newValue);

private Q_SLOTS:
    void edit_changed(const QString &text) override { SelectorBox::edit_changed(text); }
    void item_activated(int index) override;

private:
    /// The exchange that is set: its code, and its id if it was set by id, otherwise 0. The code is
    /// empty as long as the host's directory does not know the id.
    struct Place
    {
        QString stockCode;
        int givenStock = 0;

        bool isUnknown() const { return stockCode.isEmpty() && givenStock != 0; }
    };

    void setPlace(const Place &place);
    void complete(const Place &place);
    void filter(const Place &place);
    void lookUpPlace() override;
    bool isPlaceKnown() const override { return !m_place.isUnknown(); }
    void reportNone(const QString &text) override;
    void reportText(const QString &text) override;

    Place m_place;
    QPointer<BoardSelectorFilteredModel> m_filtered;
};

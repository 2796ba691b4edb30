// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/securityselectorfilteredmodel.h>
#include <formkit/selectorbox.h>

class SecuritySelectorModel;
class WaitingKey;

/// Selects a security of one board of one exchange by what its model shows (the name, unless
/// the model's default data role says otherwise). Ids travel as decimal texts, "0" for none.
///
/// Setting another exchange or board narrows the list and empties the box; while either of them is
/// empty every security is listed. A security that is set in the same turn of the event loop,
/// in whatever order, is chosen there, or waits for it (see SelectorBox); a board that is set by id
/// in that turn is one of the exchange that is set then. The other setters choose a row as a user
/// would: the change is reported; what is not listed leaves the choice as it is and waits. Typing
/// reports after each change of the text, and finds a name in any letter case.
class FORMKIT_EXPORT SecuritySelectorBox : public SelectorBox
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "this")
    Q_PROPERTY(QString StockId READ getStockId WRITE setStockId)
    Q_PROPERTY(QString StockCode READ getStockCode WRITE setStockCode)
    Q_PROPERTY(QString BoardId READ getBoardId WRITE setBoardId)
    Q_PROPERTY(QString BoardCode READ getBoardCode WRITE setBoardCode)
    Q_PROPERTY(QString SecurityId READ getSecurityId WRITE setSecurityId NOTIFY securityIdChanged
                   USER true)
    Q_PROPERTY(QString Security READ getSecurityCode WRITE setSecurityCode NOTIFY securityChanged)
    Q_PROPERTY(
        QString SecurityName READ getSecurityName WRITE setSecurityName NOTIFY securityNameChanged)

public:
    explicit SecuritySelectorBox(QWidget *parent = nullptr);
    ~SecuritySelectorBox() override;

    /// Puts another model in place, a subclass with a filter of its own for example. The box
    /// takes it over, populates it and deletes the one before. When populating throws, the box
    /// owns the model but goes on with the one before. Null is ignored.
    void setSourceModel(SecuritySelectorModel *model);

    /// The exchange whose securities are listed.
    QString getStockId() const;
    QString getStockCode() const { return m_place.stockCode; }
    /// The board whose securities are listed. The id is that of the codes in the host's
    /// directory.
    QString getBoardId() const;
    QString getBoardCode() const { return m_place.boardCode; }

    /// The id of the security that the text names, "0" for none.
    QString getSecurityId() const;
    /// The code of the security that was last chosen or typed, empty for none.
    QString getSecurityCode() const { return m_securityCode; }
    /// The name of the security that the text names, empty for none.
    QString getSecurityName() const;

public Q_SLOTS:
    /// The exchange, by id or by exact code. An id that the host's directory does not know
    /// counts as an empty code, by which every security is listed.
    void setStockId(const QString &id);
    void setStockCode(const QString &code);
    /// A board of the exchange that is set.
    void setBoardId(const QString &id);
    void setBoardCode(const QString &code);
    void setSecurityId(const QString &id);
    /// In any letter case, unless one has it letter for letter.
    void setSecurityCode(const QString &code);
    /// Puts the text into the edit field, as if it had been typed. While a security waits that was
    /// set in the same turn of the event loop, a name that is not listed is ignored: it will come
    /// with the security.
    void setSecurityName(const QString &text);

Q_SIGNALS:
    /// The code of the security, empty for none.
    void securityChanged(const QString &newValue);
    /// The text, after every change of it.
    void securityNameChanged(const QString &newValue);
    void securityIdChanged(const QString &newValue);

private Q_SLOTS:
    void edit_changed(const QString &text) override { SelectorBox::edit_changed(text); }
    void item_activated(int row) override;

private:
    /// Exchange and board as they are set: their codes, and the ids that were given for them, 0 for
    /// none. The directory may have no code for those.
    struct Place
    {
        QString stockCode;
        qint32 stockId = 0; ///< that of the code
        int givenStock = 0;
        QString boardCode;
        int givenBoard = 0;

        bool isStockUnknown() const { return stockCode.isEmpty() && givenStock != 0; }
        bool isBoardUnknown() const { return boardCode.isEmpty() && givenBoard != 0; }
        bool isSameStock(const Place &other) const;
        bool isSameBoard(const Place &other) const;
    };

    void setStock(const QString &code, int id);
    void setPlace(const Place &place);
    void complete(const Place &place);
    void filter(const Place &place);
    void lookUpPlace() override;
    bool isPlaceKnown() const override;
    bool isInPlace(int row) const override;
    void reportNone(const QString &text) override;
    void reportText(const QString &text) override;

    Place m_place;
    QString m_securityCode;
    /// The board that was set by id in the turn that is under way.
    std::unique_ptr<WaitingKey> m_boardOfTurn;
    QPointer<SecuritySelectorFilteredModel> m_filtered;
};

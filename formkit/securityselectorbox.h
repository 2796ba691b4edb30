// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/securityselectorfilteredmodel.h>
#include <formkit/selectorbox.h>

class SecuritySelectorModel;
class WaitingKey;

/// Selects a security of one board of one exchange by the text that its model displays: the name,
/// unless the model has another default data role. Ids are decimal texts, "0" for none.
///
/// - Setting another exchange or board narrows the list and empties the box. While either of them
///   is empty, every security is listed, and can be chosen.
/// - Exchange, board and security that are set in the same turn of the event loop belong together,
///   in whatever order they are set. The security is chosen there, or waits (see SelectorBox).
/// - The other setters choose a row and report the change, as if the user had chosen it. A security
///   that is not listed leaves the choice as it is and waits.
/// - Each change of the typed text is reported. Letter case is ignored.
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
    /// The exchange, by id or by its exact code. While the host's directory does not know the id
    /// the code is empty, and every security is listed.
    void setStockId(const QString &id);
    void setStockCode(const QString &code);
    /// A board of the exchange that is set.
    void setBoardId(const QString &id);
    void setBoardCode(const QString &code);
    void setSecurityId(const QString &id);
    /// Ignores letter case, unless a security has exactly this code.
    void setSecurityCode(const QString &code);
    /// Puts the text into the edit field, as if it had been typed. A name that is not listed is
    /// ignored while a security waits that was set in the same turn of the event loop: the name
    /// comes with that security.
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
    /// The exchange and board that are set: their codes, and their ids if they were set by id,
    /// otherwise 0. A code is empty as long as the host's directory does not know the id.
    struct Place
    {
        QString stockCode;
        qint32 stockId = 0; ///< what the directory answers for the code
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

// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/selectorproxymodel.h>

/// The boards of one exchange, or of all, with or without certain flags of the host's board
/// directory. Its source is a BoardSelectorModel. Setting a condition rebuilds the list; when the
/// directory throws, condition and list stay as they were.
class FORMKIT_EXPORT BoardSelectorFilteredModel : public SelectorProxyModel
{
    Q_OBJECT

public:
    explicit BoardSelectorFilteredModel(QObject *parent = nullptr);
    ~BoardSelectorFilteredModel() override;

public Q_SLOTS:
    /// The exact code of the exchange whose boards are shown; empty for all.
    void setStockCode(const QString &stockCode);
    /// The same by id. An id that no exchange has shows all boards.
    void setStockId(int id);
    /// Kept for the owner's use: it narrows nothing.
    void setSecTypeFilter(QChar secType);
    /// Shows only boards with at least one of these flag bits; 0 sets no condition.
    void setBoardFlagsOnFilter(qlonglong boardFlagsOn);
    /// Hides boards with any of these flag bits, whatever else they carry; 0 sets no
    /// condition.
    void setBoardFlagsOffFilter(qlonglong boardFlagsOff);

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const override;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

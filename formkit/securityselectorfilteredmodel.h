// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/selectorproxymodel.h>

/// The securities of one board of one exchange, or all of them while either code is empty. Its
/// source is a SecuritySelectorModel.
class FORMKIT_EXPORT SecuritySelectorFilteredModel : public SelectorProxyModel
{
    Q_OBJECT

public:
    explicit SecuritySelectorFilteredModel(QObject *parent = nullptr);
    ~SecuritySelectorFilteredModel() override;

public Q_SLOTS:
    /// The exact codes; a change that narrows or widens the list rebuilds it. Codes and list stay
    /// as they were when a subclass's filter throws.
    void setStockBoard(const QString &stockCode, const QString &boardCode);

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const override;
    RowRange candidateRows() const override;
    bool acceptsCandidates() const override;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

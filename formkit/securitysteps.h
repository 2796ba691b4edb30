// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QObject>

#include <memory>

class NumberEntry;

/// Gives the fields of a form the steps of the security that is chosen in it: an invisible member
/// of the form's tree, which connectAll() binds to the names under which the selector boxes report
/// exchange, board and security. What the host's StepSource does not know leaves a field the step
/// that it had when it came here.
///
///     auto *steps = new SecuritySteps(&form);
///     steps->addPrice(priceEditor);
///     steps->addQuantity(quantityEditor);
///
/// The steps are looked up when an id is set, also to what it was: Properties::showAgain() looks
/// them up after the host's data have changed.
class FORMKIT_EXPORT SecuritySteps : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "thisOnly")
    Q_PROPERTY(QString StockId READ getStockId WRITE setStockId)
    Q_PROPERTY(QString BoardId READ getBoardId WRITE setBoardId)
    Q_PROPERTY(QString SecurityId READ getSecurityId WRITE setSecurityId)

public:
    explicit SecuritySteps(QObject *parent = nullptr);
    ~SecuritySteps() override;

    /// Fields whose step is the least change of a price, and those whose step is one lot. They may
    /// be destroyed at any time.
    void addPrice(NumberEntry *field);
    void addQuantity(NumberEntry *field);

    /// The ids as decimal texts; what is no number counts as 0, for none.
    QString getStockId() const;
    void setStockId(const QString &id);
    QString getBoardId() const;
    void setBoardId(const QString &id);
    QString getSecurityId() const;
    void setSecurityId(const QString &id);

private:
    struct Private;
    std::unique_ptr<Private> d;
};

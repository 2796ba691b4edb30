// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "datefield.h"
#include "numberfield.h"
#include "picker.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QMap>
#include <QRadioButton>
#include <QTimer>

/// The same order as FormkitOrder, with Qt's own widgets.
class StockOrder : public QWidget
{
    Q_OBJECT

public:
    explicit StockOrder(QWidget *parent = nullptr);

    QMap<QString, QVariant> values() const;
    void fill(const QMap<QString, QVariant> &order);
    /// Reads the host's tables again.
    void refresh();
    /// Turns the captions of wrong fields red.
    void check();

Q_SIGNALS:
    void changed();

private:
    void layOut();
    void report();
    QString sum() const;

    QFormLayout *m_layout;
    Picker *m_exchange;
    Picker *m_board;
    Picker *m_security;
    NumberField *m_price;
    NumberField *m_quantity;
    DateField *m_goodTill;
    QRadioButton *m_buy;
    QRadioButton *m_sell;
    QCheckBox *m_anonymous;
    QCheckBox *m_hidden;
    Picker *m_partner;
    QLineEdit *m_comment;
    NumberField *m_sum;
    QTimer m_report;
};

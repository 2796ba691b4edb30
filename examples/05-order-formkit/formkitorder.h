// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formvalidation.h>
#include <formkit/properties.h>

class BoardSelectorBox;
class PartnerSelectorBox;
class SecuritySelectorBox;
class StockSelectorBox;

/// An order of twelve fields, with formkit.
class FormkitOrder : public QWidget
{
    Q_OBJECT

public:
    explicit FormkitOrder(QWidget *parent = nullptr);

    Values values() const { return m_hub.values(); }
    void fill(const Values &order);
    /// Reads the host's tables again.
    void refresh();
    /// Turns the captions of wrong fields red.
    void check();

Q_SIGNALS:
    void changed();

private:
    void updateSum();

    Properties m_hub;
    FormValidation m_validation;
    StockSelectorBox *m_exchange;
    BoardSelectorBox *m_board;
    SecuritySelectorBox *m_security;
    PartnerSelectorBox *m_partner;
};

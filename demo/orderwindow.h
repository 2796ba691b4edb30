// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/properties.h>
#include <hostapi/icore.h>

#include <QHash>
#include <QStateMachine>
#include <QWidget>

#include <memory>

class BoardSelectorModel;
class EmbeddedHost;
class FormRules;
class SecuritySelectorModel;
class StatementsWindow;
class StockSelectorModel;

namespace Ui {
class OrderWindow;
}

/// The order-entry dialog: the form on the left, its Values on the right.
class OrderWindow : public QWidget
{
    Q_OBJECT

public:
    explicit OrderWindow(EmbeddedHost *host, QWidget *parent = nullptr);
    ~OrderWindow() override;

    Properties *hub() { return &m_hub; }
    /// A control of the form by its name in the form designer, sub-forms included.
    QWidget *control(const char *name) const;
    /// Fills the form: exchange, board and security in that order, as each narrows the list of the
    /// next. While data are being loaded, it waits for them.
    void fill(const Values &values);

Q_SIGNALS:
    void accepted();
    void rejected();
    void sent();

private:
    void makeSubForms();
    void makeSum();
    void makeStates();
    void connectHost();
    /// Reads the host's tables again, after they have changed.
    void refresh();
    /// Gives each board the sub-form of its security type.
    void registerBoards();
    void showValues();
    /// Marks and tells what is wrong with the order. True if nothing is.
    bool check();
    void send();
    /// Says above the buttons what has become of the order, until the order is changed.
    void tell(const QString &outcome);
    void announceSessions();
    void showProgress(const QString &table, int rows, int total);
    void endProgress(const QString &text);

    std::unique_ptr<Ui::OrderWindow> m_ui;
    EmbeddedHost *m_host;
    StatementsWindow *m_statements = nullptr;
    StockSelectorModel *m_stocks;
    BoardSelectorModel *m_boards;
    SecuritySelectorModel *m_securities;
    /// The sub-form of each security type.
    QHash<QString, QWidget *> m_subForms;
    Properties m_hub;
    /// Made by the form's file.
    FormRules *m_rules = nullptr;
    /// What fill() is to set when the load ends.
    Values m_toFill;
    /// The values at the last tell().
    Values m_told;
    QStateMachine m_machine;
    /// The open sessions from before the button "New sessions" closed some; empty while all are
    /// open.
    QVector<SessionId> m_allSessions;
    /// New sessions were announced after the last progress of a load: the securities have been read
    /// again already.
    bool m_securitiesAreFresh = false;
};

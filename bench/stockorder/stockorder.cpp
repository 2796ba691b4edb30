// SPDX-License-Identifier: BSD-3-Clause
#include "stockorder.h"

#include <hostapi/icore.h>

#include <QLabel>

namespace {

// Reads a table of the host: for each row its text, its key, and the columns that make its group.
QStandardItemModel *readTable(const QString &name, const QString &textColumn,
                              const QString &keyColumn, const QStringList &groupColumns,
                              const QString &sessionColumn = QString())
{
    auto *rows = new QStandardItemModel;
    Table *const table = ICore::instance()->table(name);
    const QVector<SessionId> open = ICore::instance()->currentSessions();
    const TableLock lock(table);
    for (const Record &record : *table->masterIndex()) {
        const auto cell = [&](const QString &column) {
            return record.field(table->columnIndex(column)).toString();
        };
        if (!sessionColumn.isEmpty() &&
            !open.contains({cell("stock_id").toInt(), cell(sessionColumn).toInt()}))
            continue;
        QStringList group;
        for (const QString &column : groupColumns)
            group << cell(column);
        auto *item = new QStandardItem(cell(textColumn));
        item->setData(cell(keyColumn), Picker::KeyRole);
        item->setData(group.join('/'), Picker::GroupRole);
        rows->appendRow(item);
    }
    return rows;
}

QString groupOf(const QStringList &ids)
{
    return ids.contains("0") ? QString() : ids.join('/');
}

} // namespace

StockOrder::StockOrder(QWidget *parent)
    : QWidget(parent)
    , m_layout(new QFormLayout(this))
    , m_exchange(new Picker("0"))
    , m_board(new Picker("0"))
    , m_security(new Picker("0"))
    , m_price(new NumberField(2))
    , m_quantity(new NumberField(0))
    , m_goodTill(new DateField)
    , m_buy(new QRadioButton)
    , m_sell(new QRadioButton)
    , m_anonymous(new QCheckBox)
    , m_hidden(new QCheckBox)
    , m_partner(new Picker(QString(), true))
    , m_comment(new QLineEdit)
    , m_sum(new NumberField(2))
{
    layOut();
    refresh();

    m_report.setSingleShot(true);
    connect(&m_report, &QTimer::timeout, this, &StockOrder::report);
    const auto later = [this] { m_report.start(0); };
    connect(m_exchange, &Picker::picked, this, [this, later] {
        m_board->narrow(groupOf({m_exchange->key()}));
        later();
    });
    connect(m_board, &Picker::picked, this, [this, later] {
        m_security->narrow(groupOf({m_exchange->key(), m_board->key()}));
        later();
    });
    for (Picker *picker : {m_security, m_partner})
        connect(picker, &Picker::picked, this, later);
    for (QLineEdit *field :
         {static_cast<QLineEdit *>(m_price), static_cast<QLineEdit *>(m_quantity), m_comment})
        connect(field, &QLineEdit::textEdited, this, later);
    connect(m_goodTill, &DateField::changed, this, later);
    for (QAbstractButton *button :
         {static_cast<QAbstractButton *>(m_buy), static_cast<QAbstractButton *>(m_sell),
          static_cast<QAbstractButton *>(m_anonymous), static_cast<QAbstractButton *>(m_hidden)})
        connect(button, &QAbstractButton::clicked, this, later);
}

void StockOrder::layOut()
{
    m_sum->setReadOnly(true);
    m_layout->addRow("&Exchange", m_exchange);
    m_layout->addRow("&Board", m_board);
    m_layout->addRow("&Security", m_security);
    m_layout->addRow("&Price", m_price);
    m_layout->addRow("&Quantity", m_quantity);
    m_layout->addRow("&Good till", m_goodTill);
    m_layout->addRow("B&uy", m_buy);
    m_layout->addRow("Se&ll", m_sell);
    m_layout->addRow("&Anonymous", m_anonymous);
    m_layout->addRow("&Hidden", m_hidden);
    m_layout->addRow("Pa&rtner", m_partner);
    m_layout->addRow("&Comment", m_comment);
    m_layout->addRow("Su&m", m_sum);
}

QMap<QString, QVariant> StockOrder::values() const
{
    return {{"StockId", m_exchange->key()},
            {"BoardId", m_board->key()},
            {"SecurityId", m_security->key()},
            {"Price", m_price->value()},
            {"Quantity", m_quantity->value()},
            {"GoodTill", m_goodTill->value()},
            {"Side", m_buy->isChecked()    ? "B"
                     : m_sell->isChecked() ? "S"
                                           : ""},
            {"Anonymous", m_anonymous->isChecked() ? "Y" : "N"},
            {"Hidden", m_hidden->isChecked() ? "Y" : "N"},
            {"Partner", m_partner->key()},
            {"Comment", m_comment->text()},
            {"Sum", m_sum->value()}};
}

void StockOrder::fill(const QMap<QString, QVariant> &order)
{
    const auto text = [&](const char *name) { return order.value(name).toString(); };
    m_exchange->setKey(text("StockId"));
    m_board->setKey(text("BoardId"));
    m_security->setKey(text("SecurityId"));
    m_price->setValue(text("Price"));
    m_quantity->setValue(text("Quantity"));
    m_goodTill->setValue(text("GoodTill"));
    m_buy->setChecked(text("Side") == "B");
    m_sell->setChecked(text("Side") == "S");
    m_anonymous->setChecked(text("Anonymous") == "Y");
    m_hidden->setChecked(text("Hidden") == "Y");
    m_partner->setKey(text("Partner"));
    if (m_comment->text() != text("Comment"))
        m_comment->setText(text("Comment"));
    m_report.start(0);
}

void StockOrder::refresh()
{
    m_exchange->setRows(readTable("stocks", "name", "stock_id", {}));
    m_board->setRows(readTable("boards", "name", "board_id", {"stock_id"}));
    m_security->setRows(
        readTable("securities", "sec_name", "sec_id", {"stock_id", "board_id"}, "sess_id"));
    m_partner->setRows(readTable("gx.diler", "mox_code", "mox_code", {}));
}

void StockOrder::check()
{
    const QMap<QString, QVariant> order = values();
    const std::initializer_list<std::pair<const char *, QWidget *>> required{
        {"StockId", m_exchange}, {"BoardId", m_board},     {"SecurityId", m_security},
        {"Price", m_price},      {"Quantity", m_quantity}, {"GoodTill", m_goodTill}};
    for (const auto &[name, field] : required) {
        const QString value = order.value(name).toString();
        const bool isWrong = value.isEmpty() || value == "0";
        m_layout->labelForField(field)->setStyleSheet(isWrong ? "color: red" : "");
    }
}

void StockOrder::report()
{
    m_sum->setValue(sum());
    Q_EMIT changed();
}

QString StockOrder::sum() const
{
    QString price = m_price->value();
    const int point = price.indexOf('.');
    const int digits = point < 0 ? 0 : price.size() - point - 1;
    bool isNumber = false;
    const qint64 word = price.remove('.').toLongLong(&isNumber);
    const qint64 quantity = m_quantity->value().toLongLong();
    qint64 product = 0;
    if (!isNumber || quantity <= 0 || __builtin_mul_overflow(word, quantity, &product))
        return {};
    QString text = QString::number(product).rightJustified(digits + 1, '0');
    return digits == 0 ? text : text.insert(text.size() - digits, '.');
}

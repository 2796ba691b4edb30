// SPDX-License-Identifier: BSD-3-Clause
// Classes of the terminal's own, by names that classes of the libraries have.
#include <QComboBox>
#include <QLabel>

class Table
{
public:
    virtual ~Table();
    virtual int rows() const;
};

class Label : public QLabel
{
    Q_OBJECT

public:
    explicit Label(QWidget *parent, Qt::WindowFlags flags = {});
};

class ComboBox : public QComboBox
{
    Q_OBJECT

public:
    explicit ComboBox(QWidget *parent = nullptr);
    virtual int lots() const;

Q_SIGNALS:
    void chosen(int lots);

private:
    Table m_table;
    Label m_label;
};

Table::~Table() = default;

int Table::rows() const
{
    return 4;
}

Label::Label(QWidget *parent, Qt::WindowFlags flags) : QLabel("ours", parent, flags) {}

ComboBox::ComboBox(QWidget *parent) : QComboBox(parent), m_label(this) {}

int ComboBox::lots() const
{
    return m_table.rows() + m_label.text().size();
}

bool ownClassesWork()
{
    ComboBox box;
    int heard = 0;
    QObject::connect(&box, &ComboBox::chosen, &box, [&heard](int lots) { heard = lots; });
    Q_EMIT box.chosen(box.lots());
    return heard == 8;
}

#include "terminal.moc"

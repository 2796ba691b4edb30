// SPDX-License-Identifier: BSD-3-Clause
// Classes of the terminal's own, by names that classes of the libraries have.
#include <QComboBox>

class Table
{
public:
    virtual ~Table();
    virtual int rows() const;
};

class ComboBox : public QComboBox
{
    Q_OBJECT

public:
    explicit ComboBox(QWidget *parent = nullptr);

Q_SIGNALS:
    void chosen(int rows);
};

Table::~Table() = default;

int Table::rows() const
{
    return 4;
}

ComboBox::ComboBox(QWidget *parent) : QComboBox(parent)
{
    addItem("ours");
}

bool ownClassesWork()
{
    ComboBox box;
    int heard = 0;
    QObject::connect(&box, &ComboBox::chosen, &box, [&heard](int rows) { heard = rows; });
    Q_EMIT box.chosen(Table().rows());
    return heard == 4 && box.count() == 1;
}

#include "terminal.moc"

#pragma once

#include <formkit/combobox.h>

#include <QHash>

class QStandardItemModel;

// Selects a trading partner from the gateway's table "gx.diler" by partner code. The edit
// field shows the code, the pop-up list codes and names.
//
// A partner whose code is blank is never listed. When the box's parent has the dynamic
// property "RiskAddress" and it is true, neither is one whose client code is blank; the
// property is read at each population.
//
// A population keeps the partner that is chosen and a text that is half typed, and reports
// nothing. Only when the chosen partner is gone does the box empty itself and report that;
// when a typed code was that partner's, it stays, and the box reports that it has no name. The
// name of a partner that comes to match a typed code is reported when the user goes on typing
// or leaves the box.
//
// The box chooses when it is left (see ComboBox::chooseWhenLeft()).
class FORMKIT_EXPORT PartnerSelectorBox : public ComboBox
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "this")
    Q_PROPERTY(QString Partner READ getPartner WRITE setPartner NOTIFY changedPartner USER true)
    Q_PROPERTY(QString PartnerName READ getPartnerName NOTIFY changedPartnerName)

public:
    // Columns of the box's item model.
    enum Column {
        CodeColumn, // the partner code
        LineColumn, // code and name in one line, names at the 23rd character
        NameColumn  // the partner's name
    };
    // Characters of a line before the name; a longer code is followed by the name at once.
    static constexpr int CodeColumnWidth = 22;

    explicit PartnerSelectorBox(QWidget *parent = nullptr);

    // The code last chosen, typed or set, which need not be a listed one.
    QString getPartner() const { return m_partner; }
    // The name of the listed partner of that code, else empty.
    QString getPartnerName() const { return m_partnerName; }

    // Reads the host's table anew, under its lock. What the host throws passes through, with
    // the lock given back and the list left as it was.
    void populate();

    // Opening and closing the list reports nothing and leaves the edit field as it is.
    void showPopup() override;
    void hidePopup() override;

public slots:
    // Chooses the partner of a code, in any letter case, as a user would: the change is
    // reported. A code that is not listed is shown as it stands. The code that the box holds
    // already changes nothing, whatever has been typed since.
    void setPartner(const QString &code);

signals:
    // The code, or the name that goes with it, is another now.
    void changedPartner(const QString &newValue);
    void changedPartnerName(const QString &newValue);

private slots:
    void edit_changed(const QString &text);
    void item_activated(int index);

private:
    bool isRiskAddress() const;
    QStandardItemModel *readPartners();
    void install(QStandardItemModel *model);
    TextRows rowsOfText(const QString &text) const override;
    void showColumn(Column column);
    void noteIndex(int index);
    QString codeAt(int row) const;
    QString nameAt(int row) const;
    // The row of that code and name, else the first of that code, -1 for none.
    int rowOfPartner(const QString &code, const QString &name) const;

    QString m_partner;
    QString m_partnerName;
    QPointer<QStandardItemModel> m_model;
    // The first row of each code; the rows of each code folded to one case.
    QHash<QString, int> m_rows;
    QHash<QString, TextRows> m_foldedRows;
    // True while the box itself changes what the edit field shows.
    bool m_silent = false;
    // A population has brought the partner whose code was typed.
    bool m_unreported = false;
};

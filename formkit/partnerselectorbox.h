// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/selectorbox.h>

class QStandardItemModel;

/// Selects a trading partner from the gateway's table "gx.diler" by partner code. The edit
/// field shows the code, the pop-up list codes and names.
///
/// A partner whose code is blank is never listed. When the box's parent has the dynamic
/// property "RiskAddress" and it is true, neither is one whose client code is blank; the
/// property is read at each population.
///
/// A population keeps the partner that is chosen and a text that is half typed, and reports only
/// what has become another: a name, or that the chosen partner is gone, when the box empties
/// itself. A typed code that was that partner's stays, and the box reports that it has no name.
/// The name of a partner that comes to match a typed code is reported when the user goes on
/// typing or leaves the box; a code that the program has set waits for its partner (see
/// SelectorBox).
class FORMKIT_EXPORT PartnerSelectorBox : public SelectorBox
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "this")
    Q_PROPERTY(QString Partner READ getPartner WRITE setPartner NOTIFY changedPartner USER true)
    Q_PROPERTY(QString PartnerName READ getPartnerName NOTIFY changedPartnerName)

public:
    /// Columns of the box's item model.
    enum Column {
        CodeColumn, ///< the partner code
        LineColumn, ///< code and name in one line, names at the 23rd character
        NameColumn  ///< the partner's name
    };
    /// Characters of a line before the name; a longer code is followed by the name at once.
    static constexpr int CodeColumnWidth = 22;

    explicit PartnerSelectorBox(QWidget *parent = nullptr);

    /// The code last chosen, typed or set, which need not be a listed one.
    QString getPartner() const { return m_partner; }
    /// The name that was reported with it, empty for a code that was not listed then.
    QString getPartnerName() const { return m_partnerName; }

    /// Reads the host's table anew, under its lock. What the host throws passes through, with
    /// the lock given back and the list left as it was.
    void populate();

public Q_SLOTS:
    /// Chooses the partner of a code, in any letter case unless one has it letter for letter, as a
    /// user would: the change is reported. A code that is not listed is shown as it stands. The
    /// code that the box holds
    /// already changes nothing, whatever has been typed since.
    void setPartner(const QString &code);

Q_SIGNALS:
    /// The code, or the name that goes with it, is another now.
    void changedPartner(const QString &newValue);
    void changedPartnerName(const QString &newValue);

private Q_SLOTS:
    void edit_changed(const QString &text) override { SelectorBox::edit_changed(text); }
    void item_activated(int index) override;

private:
    bool isRiskAddress() const;
    QStandardItemModel *readPartners();
    void reportNone(const QString &text) override;

    QString m_partner;
    QString m_partnerName;
};

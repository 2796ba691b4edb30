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
/// A population keeps the chosen partner and a half-typed text, as in every SelectorBox:
/// - A partner that has another name is reported.
/// - If the chosen partner is gone, the box empties itself and reports that. If its code was typed,
///   the text stays, and the box reports that it has no name.
/// - A new partner that has the typed code is reported when the user goes on typing or leaves the
///   box. A code that the program has set waits for its partner.
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
        LineColumn, ///< code and name in one line, the name from the 23rd character on
        NameColumn  ///< the partner's name
    };
    /// Characters of a line in front of the name. Right after a longer code the name follows.
    static constexpr int CodeColumnWidth = 22;

    explicit PartnerSelectorBox(QWidget *parent = nullptr);

    /// The code that was last chosen, typed or set, listed or not.
    QString getPartner() const { return m_partner; }
    /// The name that was reported with it, empty for a code that was not listed then.
    QString getPartnerName() const { return m_partnerName; }

    /// Reads the host's table again, under its lock. Exceptions of the host pass through; the table
    /// is unlocked then, and the list is as before.
    void populate();

public Q_SLOTS:
    /// Chooses the partner of a code and reports the change, as if the user had chosen it. Letter
    /// case is ignored, unless a partner has exactly this code. A code that is not listed is shown
    /// as it stands. The code that getPartner() returns changes nothing.
    void setPartner(const QString &code);

Q_SIGNALS:
    /// Both are emitted when the code or its name has changed.
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

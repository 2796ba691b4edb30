// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/decimalvalidator.h>

#include <QCoreApplication>
#include <QHash>
#include <QVector>

#include <optional>
#include <tuple>

/// Watches over the text of a number editor: judges every edit by who did it, and remembers what
/// the text alone does not tell. No edit makes an amount that was not typed or pasted:
///
/// - What is pasted is read as a whole: blanks around it, one currency sign or code and groups
///   that fit are left out; it is refused when it could be another amount as well.
/// - '.' and ',' (under Arabic and Persian '/' too) are the point where they cannot group.
/// - A typed separator vanishes and is remembered. While the digits after it are no group, there
///   is no number; once they cannot become one, the text is marked.
/// - Zeros in front mean nothing, also the one that a digit is typed in front of.
/// - A text of the program is shown as it is. While it is beyond the limits or no number, an edit
///   may remove characters, and insert some if a number within the limits comes out.
///
/// It knows no widget. The limits and the locale are those of the validator, which outlives it.
class EditGuard
{
    Q_DECLARE_TR_FUNCTIONS(NumberEditor)

public:
    enum By {
        Key,
        KeypadPoint, ///< the keypad's decimal key: the point, whatever character came
        Insertion,   ///< pasted, dropped, composed: several characters at one go
        History,     ///< undo and redo
        Program      ///< a text of the locale that the program set
    };

    struct Edit
    {
        QString after;
        int caret = 0;    ///< in `after`, next to what the edit inserted
        int inserted = 0; ///< how many characters it put in front of the caret; the rest of
                          ///< what `after` lacks was removed there
        By by = Key;
        bool isCut = false; ///< not all that was to be inserted fitted
    };

    struct Verdict
    {
        bool isTaken = false;
        QString text; ///< what to show when it is taken
        int caret = 0;
        QString reason; ///< what the user has to know, if anything
    };

    explicit EditGuard(const DecimalValidator &limits) : m_limits(limits) {}

    /// What an edit does to the shown text, which is that of the last one that was taken. A text
    /// that is longer than `maxLength` when it is grouped is refused.
    Verdict judge(const Edit &edit, int maxLength);
    /// Shows a text that is no amount as it is. A doubt may say more than that.
    void showForeign(const QString &text, const QString &doubt = {});

    /// What is shown.
    const QString &text() const { return m_shown.text; }
    QValidator::State state() const;
    /// The number that is shown; none while it is not settled, and for what is no number.
    const std::optional<decimal> &number() const { return m_shown.number; }
    /// Why the text is not the amount that it looks like, empty if it is.
    const QString &doubt() const { return m_shown.doubt; }
    /// Whether there is a doubt that no further digits can remove.
    bool isMarked() const { return !doubt().isEmpty() && !m_shown.isOnItsWay; }
    /// The value in system form. A text that is no number is its own value, unless it could be
    /// taken for one or has only a sign, a point or blanks.
    QString value() const;
    /// Whether the text has no digit, letter or other sign of its own.
    bool isBare() const;
    /// Whether there is a group separator at a place, which comes back when it is removed.
    bool isGroup(int place) const;
    /// The length of a shown minus that has direction marks, else 0.
    int markedSign() const;
    /// Undo leads back to the shown text and no further.
    void endHistory();
    /// The hand has gone: forgets typed separators and points that nothing was typed after, and
    /// expects no further digits.
    void leave();
    static QString wordOfLength();

private:
    /// A separator or a refused point that was typed, and the integer digits in front of it.
    struct Stop
    {
        int place = 0;
        bool isPoint = false;
    };
    using Stops = QVector<Stop>;

    struct Shown
    {
        QString text;
        std::optional<decimal> number;
        Stops stops;
        QString doubt;
        bool isOnItsWay = false;
        bool isForeign = false; ///< not a number as the locale writes it
    };

    using Fault = DecimalValidator::Fault;
    using Limits = std::tuple<int, int, bool, bool>;

    const LocaleSymbols &symbols() const { return m_limits.symbols(); }
    bool isReadable(const NumberText &number) const;
    Limits limits() const;
    void judgeBy(const NumberText &number) const;
    bool isBeyondLimits() const;
    int integerDigits(QStringView text) const;
    Verdict take(const QString &text, int caret) const { return {true, text, caret, {}}; }
    Verdict refuse(const QString &reason) const { return {false, {}, 0, reason}; }
    Verdict takeAsGiven(const Edit &edit, int maxLength);
    Verdict takeForeign(const Edit &edit, int maxLength);
    Verdict takeKey(Edit edit, int maxLength);
    Verdict typeSeparator(Edit edit, int maxLength);
    Verdict takeInsertion(Edit edit, int maxLength);
    Verdict takeEdit(Edit edit, int maxLength, const Stop *typed = nullptr);
    Verdict settle(const Edit &edit, const NumberText &number, const Stops &stops, int maxLength);
    void settleForeign(const QString &text);
    void settleStops(const Stops &stops, const NumberText &number);
    void dropZeroAfter(Edit *edit) const;
    Stops movedStops(const Edit &edit, int removed) const;
    void rememberPoint(const Edit &edit);
    static QString wordOfPoint();
    QString wordOf(Fault fault, const Edit &edit, const NumberText &number) const;

    const DecimalValidator &m_limits;
    Shown m_shown;
    /// The state of the shown text rests on limits that may change.
    mutable Fault m_fault = Fault::None;
    mutable std::optional<Limits> m_judgedBy;
    QHash<QString, Shown> m_past; ///< texts with a doubt or stops that undo may lead back to
};

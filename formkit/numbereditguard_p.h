// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/decimalvalidator.h>

#include <QCoreApplication>
#include <QVector>

#include <optional>
#include <tuple>

struct NumberRules;

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
/// - A deleted separator takes the digit next to it along. The point is not deleted by itself while
///   digits stand after it.
/// - By the rules, a minus changes the sign, a suffix multiplies, and a number with more fraction
///   digits than the limits allow waits for its suffix.
///
/// It knows no widget. The limits and the locale are those of the validator, which outlives it, as
/// the rules do.
class EditGuard
{
    Q_DECLARE_TR_FUNCTIONS(NumberEditor)

public:
    enum By {
        Key,
        KeypadPoint, ///< the keypad's decimal key: the point, whatever character came
        Insertion,   ///< pasted, dropped, composed: several characters at one go
        History,     ///< QLineEdit's own undo and redo
        Program      ///< a text of the locale that the program set
    };

    struct Edit
    {
        QString after;
        int caret = 0;    ///< in `after`, next to what the edit inserted
        int inserted = 0; ///< how many characters it put in front of the caret; what else differs
                          ///< from the shown text was removed at the caret
        By by = Key;
        bool isCut = false;        ///< not all that was to be inserted fitted
        int caretBefore = 0;       ///< in the text before
        bool hadSelection = false; ///< what was removed had been selected
    };

    struct Verdict
    {
        bool isTaken = false;
        QString text; ///< what to show when it is taken
        int caret = 0;
        QString reason; ///< what the user has to know, if anything
        bool isMultiplied = false;
    };

    /// A separator or a refused point that was typed, and the integer digits in front of it.
    struct Stop
    {
        int place = 0;
        bool isPoint = false;
    };
    using Stops = QVector<Stop>;

    /// What is shown, and what is known of it.
    struct Shown
    {
        QString text;
        std::optional<decimal> number;
        Stops stops;
        QString doubt;
        bool isOnItsWay = false; ///< further characters may remove the doubt
        bool isTyped = false;    ///< the hand is still at it
        bool awaitsSuffix = false;
        bool isForeign = false; ///< not a number as the locale writes it
    };

    EditGuard(const DecimalValidator &limits, const NumberRules &rules)
        : m_limits(limits), m_rules(rules)
    {
    }

    /// What an edit does to the shown text, which is the result of the last accepted edit. A text
    /// that is longer than `maxLength` when it is grouped is refused.
    Verdict judge(const Edit &edit, int maxLength);
    /// Shows, unchanged, a text that is no amount. `doubt` is the reason told to the user; if it is
    /// empty, a general one.
    void showForeign(const QString &text, const QString &doubt = {});
    /// Shows what was shown before.
    void restore(const Shown &shown);
    /// Shows the number that lies so many steps further. There must be a step.
    Verdict step(int count, int maxLength);

    const Shown &shown() const { return m_shown; }
    const QString &text() const { return m_shown.text; }
    QValidator::State state() const;
    /// The number that is shown; none while it is not settled, and for what is no number.
    const std::optional<decimal> &number() const { return m_shown.number; }
    /// Why the text is not the amount that it looks like, or is outside the limits of the rules;
    /// empty if it is in order.
    QString doubt() const;
    /// Whether there is a doubt that no further characters can remove.
    bool isMarked() const;
    /// The value in system form. A text that is no number is its own value, unless it could be
    /// taken for one or has only a sign, a point or blanks.
    QString value() const;
    /// Whether the text has no digit, letter or other sign of its own.
    bool isBare() const;
    /// Whether there is a group separator at a place, which comes back when it is removed.
    bool isGroup(int place) const;
    /// The length of a shown minus that has direction marks, else 0.
    int markedSign() const;
    /// A part of the text as other programs read it, without group separators.
    QString ungrouped(const QString &part) const;
    /// The hand has finished: forgets typed separators and points that nothing was typed after, and
    /// expects no further characters.
    void leave();
    static QString wordOfLength();

private:
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
    Verdict toggleSign(const Edit &edit, int maxLength);
    Verdict multiply(const Edit &edit, int places, int maxLength);
    Verdict typeSeparator(Edit edit, int maxLength);
    Verdict takeInsertion(Edit edit, int maxLength);
    Verdict takeEdit(Edit edit, int maxLength, const Stop *typed = nullptr);
    bool awaitsSuffix(Fault fault, const Edit &edit, const NumberText &number) const;
    void awaitSuffix(const QString &reason);
    bool deletesPoint(const Edit &edit, int removed) const;
    void deleteNextToSeparator(Edit *edit, int removed) const;
    Verdict settle(const Edit &edit, const NumberText &number, const Stops &stops, int maxLength);
    void settleForeign(const QString &text);
    void settleStops(const Stops &stops, const NumberText &number);
    void dropZeroAfter(Edit *edit) const;
    Stops movedStops(const Edit &edit, int removed) const;
    void rememberPoint(const Edit &edit);
    QString wordOfLimit(int side) const;
    static QString wordOfMinus();
    static QString wordOfDigits();
    static QString wordOfPoint();
    QString wordOf(Fault fault, const Edit &edit, const NumberText &number) const;

    const DecimalValidator &m_limits;
    const NumberRules &m_rules;
    Shown m_shown;
    /// The state of the shown text rests on limits that may change.
    mutable Fault m_fault = Fault::None;
    mutable std::optional<Limits> m_judgedBy;
};

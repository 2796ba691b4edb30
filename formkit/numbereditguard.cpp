// SPDX-License-Identifier: BSD-3-Clause
#include "numbereditguard_p.h"

#include "multiplier_p.h"
#include "numberrules_p.h"
#include "numbersteps_p.h"
#include "numbertext_p.h"
#include "pastednumber_p.h"

#include <algorithm>

QValidator::State EditGuard::state() const
{
    if (!m_shown.number)
        return QValidator::Intermediate;
    if (m_judgedBy != limits())
        judgeBy(NumberText(text(), symbols()));
    return m_fault == Fault::None && m_rules.sideOf(*m_shown.number) == 0
               ? m_limits.judge(*m_shown.number)
               : QValidator::Intermediate;
}

QString EditGuard::doubt() const
{
    const int side = m_shown.number ? m_rules.sideOf(*m_shown.number) : 0;
    return side == 0 ? m_shown.doubt : wordOfLimit(side);
}

// Further digits lead away from zero.
bool EditGuard::isMarked() const
{
    if (!m_shown.doubt.isEmpty())
        return !m_shown.isOnItsWay;
    const int side = m_shown.number ? m_rules.sideOf(*m_shown.number) : 0;
    return side != 0 && !(m_shown.isTyped && m_shown.number->compare(decimal::zero) != side);
}

QString EditGuard::value() const
{
    if (m_shown.number)
        return m_shown.number->toString();
    const bool isValue = m_shown.isForeign && !isBare() && !decimal::canConvert(text(), false);
    return isValue ? text() : QString();
}

bool EditGuard::isBare() const
{
    return std::all_of(text().begin(), text().end(), [this](QChar c) {
        const LocaleSymbols::Kind kind = symbols().kindOf(c);
        return c.isSpace() || (kind != LocaleSymbols::Digit && kind != LocaleSymbols::Other);
    });
}

bool EditGuard::isGroup(int place) const
{
    return !m_shown.isForeign && place < text().size() &&
           symbols().kindOf(text().at(place)) == LocaleSymbols::Group;
}

int EditGuard::markedSign() const
{
    const QString &minus = symbols().minus();
    return minus.size() > 1 && text().startsWith(minus) ? int(minus.size()) : 0;
}

QString EditGuard::ungrouped(const QString &part) const
{
    QString text;
    for (const QChar c : part) {
        if (m_shown.isForeign || !LocaleSymbols::isSkipped(symbols().kindOf(c)))
            text += c;
    }
    return text;
}

void EditGuard::leave()
{
    const int digits = integerDigits(text());
    Stops &stops = m_shown.stops;
    const auto isLast = [digits](const Stop &stop) { return stop.place >= digits; };
    stops.erase(std::remove_if(stops.begin(), stops.end(), isLast), stops.end());
    m_shown.isOnItsWay = false;
    m_shown.isTyped = false;
}

bool EditGuard::isReadable(const NumberText &number) const
{
    return number.shape() != NumberText::NoNumber && number.isReadable() &&
           (!number.hasDigits() || decimal::canConvert(number.text(), false, symbols()));
}

EditGuard::Limits EditGuard::limits() const
{
    return {m_limits.getDigits(), m_limits.getNumDigits(), m_limits.getCanNegative(),
            m_limits.getCanBeZero()};
}

void EditGuard::judgeBy(const NumberText &number) const
{
    m_fault = m_limits.faultOf(number);
    m_judgedBy = limits();
}

bool EditGuard::isBeyondLimits() const
{
    return m_shown.number && m_limits.faultOf(NumberText(text(), symbols())) != Fault::None;
}

EditGuard::Verdict EditGuard::judge(const Edit &edit, int maxLength)
{
    if (edit.by == Program || edit.by == History)
        return takeAsGiven(edit, maxLength);
    if (edit.isCut)
        return refuse(wordOfLength());
    const bool replacesAll = edit.inserted == edit.after.size();
    if (m_shown.isForeign && !replacesAll)
        return takeForeign(edit, maxLength);
    if (edit.inserted == 0)
        return takeEdit(edit, maxLength);
    return edit.inserted == 1 && edit.by != Insertion ? takeKey(edit, maxLength)
                                                      : takeInsertion(edit, maxLength);
}

void EditGuard::showForeign(const QString &text, const QString &doubt)
{
    settleForeign(text);
    if (!doubt.isEmpty())
        m_shown.doubt = doubt;
}

void EditGuard::restore(const Shown &shown)
{
    m_shown = shown;
    m_judgedBy.reset();
}

EditGuard::Verdict EditGuard::step(int count, int maxLength)
{
    if (!m_shown.number && !isBare())
        return refuse(doubt());
    NumberRules rules = m_rules;
    if (!m_limits.getCanNegative() && !(rules.minimum.number > decimal::zero))
        rules.minimum.number = decimal::zero;
    const std::optional<decimal> to = stepped(m_shown.number, count, rules, m_limits.getDigits());
    if (!to && count < 0 && !m_rules.minimum.number && rules.minimum.number)
        return refuse(wordOfMinus());
    if (!to && (count < 0 ? m_rules.minimum : m_rules.maximum).number)
        return refuse(wordOfLimit(count));
    if (!to)
        return refuse(wordOfDigits());
    const QString text = to->toSystemString(symbols());
    const Edit edit{text, int(text.size()), int(text.size()), Insertion};
    const NumberText number(text, symbols());
    const Fault fault = m_limits.faultOf(number);
    Verdict verdict = fault == Fault::None ? settle(edit, number, {}, maxLength)
                                           : refuse(wordOf(fault, edit, number));
    m_shown.isTyped = m_shown.isTyped && !verdict.isTaken;
    return verdict;
}

void EditGuard::settleForeign(const QString &text)
{
    m_shown = {};
    m_shown.text = text;
    m_shown.isForeign = true;
    m_shown.doubt = tr("'%1' is no number").arg(text);
}

// A text that was not typed has its groups where they belong, or is shown as it is.
EditGuard::Verdict EditGuard::takeAsGiven(const Edit &edit, int maxLength)
{
    const NumberText number(edit.after, symbols());
    if (isReadable(number) && fitsInGroups(edit.after, symbols()))
        return settle(edit, number, {}, maxLength);
    settleForeign(edit.after);
    return take(edit.after, edit.caret);
}

// Its separators are part of the text and do not move.
EditGuard::Verdict EditGuard::takeForeign(const Edit &edit, int maxLength)
{
    QStringView text = edit.after;
    while (!text.isEmpty() && symbols().kindOf(text.back()) == LocaleSymbols::Group)
        text.chop(1);
    const NumberText number(text, symbols());
    if (isReadable(number) && fitsInGroups(text, symbols()) &&
        (edit.inserted == 0 || m_limits.faultOf(number) == Fault::None))
        return settle(edit, number, {}, maxLength);
    if (edit.inserted > 0)
        return refuse(doubt());
    settleForeign(edit.after);
    return take(edit.after, edit.caret);
}

// A point in front of the shown one moves the caret over that.
EditGuard::Verdict EditGuard::takeKey(Edit edit, int maxLength)
{
    const int place = edit.caret - 1;
    const QChar key = withoutDash(edit.after.at(place), symbols());
    edit.after[place] = key;
    if (symbols().digitValue(key) >= 0)
        return takeEdit(edit, maxLength);
    if (m_rules.signToggle && !edit.hadSelection && symbols().kindOf(key) == LocaleSymbols::Minus)
        return toggleSign(edit, maxLength);
    const bool isSuffix = m_rules.multipliers && !edit.hadSelection && place == text().size();
    if (isSuffix && placesOfSuffix(key) > 0)
        return multiply(edit, placesOfSuffix(key), maxLength);
    const NumberText before(QStringView(edit.after).left(place), symbols());
    const bool isZero =
        before.integer().size() == 1 && symbols().digitValue(before.integer().front()) == 0;
    const bool canGroup =
        before.shape() != NumberText::Integer || (!before.integer().isEmpty() && !isZero);
    const bool groups = symbols().kindOf(key) == LocaleSymbols::Group;
    if (edit.by == KeypadPoint ||
        ((!groups || !canGroup) && PastedNumber::isForeignPoint(key, m_limits.locale(), symbols())))
        edit.after[place] = symbols().point();
    else if (groups)
        return typeSeparator(edit, maxLength);
    const QStringView rest = QStringView(edit.after).mid(place + 1);
    if (edit.after.at(place) == symbols().point() && rest == QStringView(text()).mid(place) &&
        rest.startsWith(symbols().point()))
        return take(text(), edit.caret);
    return takeEdit(edit, maxLength);
}

// The caret stays at its digit.
EditGuard::Verdict EditGuard::toggleSign(const Edit &edit, int maxLength)
{
    const NumberText number(text(), symbols());
    const int behind = text().size() - (edit.caret - 1);
    Edit signEdit;
    signEdit.after = text().mid(qMax(markedSign(), int(number.sign().size())));
    signEdit.caret = signEdit.inserted = int(!number.isNegative());
    if (!number.isNegative())
        signEdit.after.prepend(QLatin1Char('-'));
    Verdict verdict = takeEdit(signEdit, maxLength);
    if (verdict.isTaken)
        verdict.caret = qMax(0, int(verdict.text.size()) - behind);
    return verdict;
}

EditGuard::Verdict EditGuard::multiply(const Edit &edit, int places, int maxLength)
{
    const NumberText number(text(), symbols());
    if (!m_shown.doubt.isEmpty() && !m_shown.awaitsSuffix)
        return refuse(m_shown.doubt);
    if (!number.hasDigits())
        return refuse(PastedNumber::wordOf(edit.after.back(), symbols()));
    Edit whole;
    whole.after = multiplied(number, places, symbols());
    whole.caret = whole.inserted = whole.after.size();
    const NumberText product(whole.after, symbols());
    const Fault fault = m_limits.faultOf(product);
    if (fault != Fault::None)
        return refuse(wordOf(fault, whole, product));
    Verdict verdict = settle(whole, product, {}, maxLength);
    verdict.isMultiplied = verdict.isTaken;
    return verdict;
}

// It vanishes. Next to a shown one the caret only moves over that.
EditGuard::Verdict EditGuard::typeSeparator(Edit edit, int maxLength)
{
    const int place = --edit.caret;
    const QChar key = edit.after.at(place);
    edit.after.remove(place, 1);
    edit.inserted = 0;
    const NumberText before(QStringView(edit.after).left(place), symbols());
    if (before.shape() != NumberText::Integer || before.integer().isEmpty())
        return refuse(PastedNumber::wordOf(key, symbols()));
    if (edit.after == text() && (isGroup(place) || isGroup(place - 1)))
        return take(text(), place + int(isGroup(place)));
    const Stop typed{int(before.integer().size()), false};
    return takeEdit(edit, maxLength, &typed);
}

EditGuard::Verdict EditGuard::takeInsertion(Edit edit, int maxLength)
{
    const int place = edit.caret - edit.inserted;
    const PastedNumber pasted(QStringView(edit.after).mid(place, edit.inserted), m_limits.locale(),
                              symbols(), m_rules, edit.inserted == edit.after.size());
    if (!pasted.reason().isEmpty())
        return refuse(pasted.reason());
    edit.after.replace(place, edit.inserted, pasted.number());
    edit.inserted = pasted.number().size();
    edit.caret = place + edit.inserted;
    return takeEdit(edit, maxLength);
}

EditGuard::Verdict EditGuard::takeEdit(Edit edit, int maxLength, const Stop *typed)
{
    int removed = text().size() - (edit.after.size() - edit.inserted);
    if (deletesPoint(edit, removed))
        return refuse(tr("Digits stand after the decimal point: delete them first"));
    deleteNextToSeparator(&edit, removed);
    removed = text().size() - (edit.after.size() - edit.inserted);
    Stops stops = movedStops(edit, removed);
    if (typed)
        stops << *typed;
    dropZeroAfter(&edit);
    const NumberText number(edit.after, symbols());
    const Fault fault = m_limits.faultOf(number);
    const bool isRefused = fault != Fault::None && (edit.inserted > 0 || !isBeyondLimits());
    const bool awaits = isRefused && awaitsSuffix(fault, edit, number);
    if (isRefused && !awaits) {
        if (fault == Fault::Point && removed == 0)
            rememberPoint(edit);
        return refuse(wordOf(fault, edit, number));
    }
    Verdict verdict = settle(edit, number, stops, maxLength);
    if (verdict.isTaken && awaits)
        awaitSuffix(wordOf(fault, edit, number));
    if (verdict.isTaken && number.leadingZeros() > edit.inserted)
        verdict.reason = tr("Zeros in front were left out: %1").arg(verdict.text);
    return verdict;
}

bool EditGuard::awaitsSuffix(Fault fault, const Edit &edit, const NumberText &number) const
{
    const auto fits = [&](int places) {
        const QString product = multiplied(number, places, symbols());
        return m_limits.faultOf(NumberText(product, symbols())) == Fault::None;
    };
    return m_rules.multipliers && edit.by != Insertion &&
           (fault == Fault::Point || fault == Fault::FractionDigits) && (fits(3) || fits(6));
}

void EditGuard::awaitSuffix(const QString &reason)
{
    if (!m_shown.doubt.isEmpty())
        return;
    m_shown.doubt = reason;
    m_shown.number.reset();
    m_shown.awaitsSuffix = m_shown.isOnItsWay = true;
}

bool EditGuard::deletesPoint(const Edit &edit, int removed) const
{
    return edit.inserted == 0 && !edit.hadSelection && removed == 1 &&
           symbols().kindOf(text().at(edit.caret)) == LocaleSymbols::Point &&
           !NumberText(text(), symbols()).fraction().isEmpty();
}

// A separator alone comes back at once: the key means the digit after it (Delete), or before it.
void EditGuard::deleteNextToSeparator(Edit *edit, int removed) const
{
    if (edit->inserted > 0 || edit->hadSelection || removed != 1 || !isGroup(edit->caret))
        return;
    if (edit->caretBefore > edit->caret)
        --edit->caret;
    edit->after.remove(edit->caret, 1);
}

// What is typed in front of an integer part that is one zero takes its place.
void EditGuard::dropZeroAfter(Edit *edit) const
{
    if (edit->inserted == 0 || edit->caret >= edit->after.size() ||
        symbols().digitValue(edit->after.at(edit->caret)) != 0)
        return;
    const int place = edit->caret - edit->inserted;
    const QStringView after(edit->after);
    const NumberText front(after.left(place), symbols());
    const NumberText inserted(after.mid(place, edit->inserted), symbols());
    const NumberText rest(after.mid(edit->caret), symbols());
    const bool areDigits = inserted.hasDigits() && inserted.text() == inserted.integer();
    if (areDigits && front.text() == front.sign() && rest.integer().size() == 1)
        edit->after.remove(edit->caret, 1);
}

int EditGuard::integerDigits(QStringView text) const
{
    return int(NumberText(text, symbols()).integer().size());
}

// Stops move with the digits in front of them. A last one goes with the digit next to it.
EditGuard::Stops EditGuard::movedStops(const Edit &edit, int removed) const
{
    if (m_shown.stops.isEmpty())
        return {};
    const QStringView after(edit.after);
    const int place = edit.caret - edit.inserted;
    const int from = integerDigits(after.left(place));
    const int to = integerDigits(QStringView(text()).left(place + removed));
    const int added = integerDigits(after.left(edit.caret)) - from;
    const int digits = integerDigits(text());
    Stops stops;
    for (Stop stop : m_shown.stops) {
        if (stop.place > to)
            stop.place += added - (to - from);
        else if (stop.place > from && to == digits)
            continue;
        else
            stop.place = qMin(stop.place, from);
        stops << stop;
    }
    return stops;
}

// Digits that are typed after it would be those of a fraction.
void EditGuard::rememberPoint(const Edit &edit)
{
    const int place = integerDigits(QStringView(edit.after).left(edit.caret));
    if (place == integerDigits(text()))
        m_shown.stops << Stop{place, true};
}

EditGuard::Verdict EditGuard::settle(const Edit &edit, const NumberText &number, const Stops &stops,
                                     int maxLength)
{
    const bool isSign = number.shape() == NumberText::Integer && !number.hasDigits();
    QString text = isSign ? number.text().toString() : number.written();
    if (text.size() > maxLength) {
        if (edit.inserted > 0 && edit.by != Program && edit.by != History)
            return refuse(wordOfLength());
        text = number.text().toString();
    }
    m_shown = {};
    m_shown.text = text;
    m_shown.isTyped = edit.by != Program;
    if (number.hasDigits() || !stops.isEmpty())
        settleStops(stops, number);
    if (number.hasDigits() && m_shown.doubt.isEmpty())
        m_shown.number =
            decimal::fromLocaleString(number.text(), symbols(), int(number.fraction().size()));
    judgeBy(number);
    if (text == edit.after)
        return take(text, edit.caret);
    const int behind = countUngrouped(QStringView(edit.after).mid(edit.caret), symbols());
    const int count = qMax(0, countUngrouped(text, symbols()) - behind);
    return take(text, placeAfter(count, text, symbols()));
}

// Without digits nothing is left that a separator could group.
void EditGuard::settleStops(const Stops &stops, const NumberText &number)
{
    const int zeros = number.leadingZeros();
    const int digits = int(number.integer().size()) - zeros;
    QVector<int> places;
    bool isFraction = false;
    for (Stop stop : stops) {
        stop.place -= zeros;
        if (!number.hasDigits() || stop.place < int(!stop.isPoint) || stop.place > digits)
            continue;
        m_shown.stops << stop;
        isFraction = isFraction || (stop.isPoint && stop.place < digits);
        if (!stop.isPoint && stop.place < digits)
            places << stop.place;
    }
    std::sort(places.begin(), places.end());
    places.erase(std::unique(places.begin(), places.end()), places.end());
    QVector<int> sizes;
    int last = 0;
    for (const int place : std::as_const(places)) {
        sizes << place - last;
        last = place;
    }
    sizes << digits - last;
    if (isFraction)
        m_shown.doubt = wordOfPoint();
    else if (!fitsInGroups(sizes, symbols(), false))
        m_shown.doubt = PastedNumber::wordOf(symbols().group(), symbols());
    m_shown.isOnItsWay = !isFraction && number.shape() == NumberText::Integer &&
                         fitsInGroups(sizes, symbols(), true);
}

QString EditGuard::wordOf(Fault fault, const Edit &edit, const NumberText &number) const
{
    switch (fault) {
    case Fault::Point:
        return wordOfPoint();
    case Fault::Minus:
        return wordOfMinus();
    case Fault::IntegerDigits:
        return tr("Digits in front of the point: %1 at most").arg(m_limits.getNumDigits());
    case Fault::FractionDigits:
        return tr("Digits after the point: %1 at most").arg(m_limits.getDigits());
    case Fault::Digits:
        return wordOfDigits();
    case Fault::NoNumber:
    case Fault::None:
        break;
    }
    const int place = edit.caret - edit.inserted;
    for (const QChar c : QStringView(edit.after).mid(place, edit.inserted)) {
        if (symbols().kindOf(c) == LocaleSymbols::Other)
            return PastedNumber::wordOf(c, symbols());
    }
    const auto isPoint = [this](QChar c) { return symbols().kindOf(c) == LocaleSymbols::Point; };
    const QStringView all = number.text();
    return std::count_if(all.begin(), all.end(), isPoint) > 1 ? tr("A number has one decimal point")
                                                              : tr("A sign stands in front");
}

QString EditGuard::wordOfLimit(int side) const
{
    if (side < 0)
        return tr("At least %1").arg(m_rules.minimum.number->toSystemString(symbols()));
    return tr("At most %1").arg(m_rules.maximum.number->toSystemString(symbols()));
}

QString EditGuard::wordOfMinus()
{
    return tr("No negative numbers");
}

QString EditGuard::wordOfDigits()
{
    return tr("More digits than an amount can have");
}

QString EditGuard::wordOfPoint()
{
    return tr("Whole numbers only");
}

QString EditGuard::wordOfLength()
{
    return tr("That is too long for this field");
}

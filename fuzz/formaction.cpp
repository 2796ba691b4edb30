#include "formaction.h"

#include "formcontent.h"
#include "formtexts.h"

#include <QMap>
#include <QRegularExpression>
#include <QStringList>

namespace {

const QStringList boxes{"exchange", "board", "security"};
const QStringList numbers{"price", "quantity", "offset", "price2"};
const QStringList lines{"comment", "mirror", "noteA", "noteB", "remark"};
const QStringList dates{"till", "till2"};
const QStringList edits = boxes + numbers + lines + dates;
const QStringList buttons{"buy", "sell", "hidden"};
const QStringList mortal =
    boxes + QStringList{"price", "quantity", "total",  "till",    "till2", "buy",
                        "sell",  "hidden",   "mirror", "comment", "pageA", "pageB"};
const QStringList keys{"Backspace",  "Delete",         "Left",      "Right",  "Home",
                       "End",        "Ctrl+A",         "Ctrl+Z",    "Ctrl+Y", "Ctrl+Shift+Z",
                       "Ctrl+X",     "Ctrl+Backspace", "Return",    "Ctrl+C", "Ctrl+V",
                       "Shift+Left", "Ctrl+Del",       "Shift+Home"};

const QStringList numberTexts{"1",
                              "12",
                              "1234",
                              "1234567",
                              "0",
                              "0.5",
                              "12.50",
                              "1,234.50",
                              "1.234",
                              "1.234,50",
                              "1234,5",
                              "-",
                              "-1",
                              "-0",
                              ".",
                              ",",
                              ".5",
                              "00",
                              "007",
                              "+3",
                              "1e5",
                              " 12",
                              "abc",
                              "1.5.0",
                              "1 234",
                              "99999999",
                              "123456789012345.67",
                              "1234567890123456",
                              "1.50",
                              "1,50"};
const QStringList lineTexts{"a", "bc ", " d", "a long comment", "x=y", "100 %", "\u00e4\u00f6"};
const QStringList beginnings{"a+", "A++", "al++", "M+", "ma++", "f+", "o+", "O++", "or+++", "w++"};
const QStringList fills{
    "StockId=1|BoardId=2|SecurityId=14|Price=12.5", "StockCode=XB|BoardCode=OP|Security=ORE|Side=B",
    "BoardId=1|StockId=2|Note=n", "Comment=c|GoodTill=2026-03-15|Hidden=Y|Quantity=7"};
const QStringList days{"2026.03.15", "1999.03.15", "2100.01.01"};
const QStringList dateTexts{"15.03.26",   "29.02.28", "30.02.26", "1.1.27",   "15.03.2",
                            "15.03.2026", "3",        ".",        "01.01.99", "x"};
const QStringList boxTexts{"Alpha", "alpha", "Bet", "Beta", "Main",  "main",   "Futures", "fu",
                           "Ful",   "Ore",   "ore", "OATS", "oats",  "Oats",   "Wa",      "wax",
                           "Aleph", "x",     "O",   "Tin",  "Ore 3", "Options"};
const QMap<QString, QStringList> valueTexts{
    {"StockId", {"0", "1", "2", "3", "77", "", "abc", " 1"}},
    {"StockCode", {"XA", "XB", "xa", "XC", "?", ""}},
    {"BoardId", {"0", "1", "2", "3", "4", "5", "99", "", "x"}},
    {"BoardCode", {"MA", "FU", "fu", "OP", "ma", "", "?"}},
    {"SecurityId", {"0", "11", "12", "13", "14", "15", "16", "17", "18", "99", "", "x"}},
    {"Security", {"ORE", "ore", "OATS", "oat", "WAX", "", "?"}},
    {"SecurityName", {"Ore", "ore", "Oats", "oaTS", "Wa", "", "?"}},
    {"Stock", {"Alpha", "?"}},
    {"Board", {"Main", ""}},
    {"Price", numberTexts + QStringList{"9223372036854775807", "92233720368547758070", ""}},
    {"Offset", {"0.00001", "-1", "", "x", "1.5", "900000000000000000"}},
    {"Quantity", numberTexts + QStringList{""}},
    {"Total", {"1.00", "x", ""}},
    {"GoodTill",
     {"2026.03.15 00:00:00.000", "2026.03.15", "1999-03-15", "2026.03.15 12:30:00.000", "",
      "2026-02-28 10:00:00", "2026.02.30", "x", "2099.03.15 00:00:00.000"}},
    {"Side", {"B", "S", "", "X"}},
    {"Hidden", {"Y", "N", "", "Q"}},
    {"Comment", lineTexts + QStringList{""}},
    {"Note", lineTexts + QStringList{""}},
    {"Remark", lineTexts + QStringList{""}},
    {"Unbound", {"1", ""}}};

template <typename List> auto anyOf(const List &list, std::mt19937 &random)
{
    return list[int(random() % unsigned(list.size()))];
}

const QStringList &textsFor(const QString &target)
{
    return numbers.contains(target) ? numberTexts
           : lines.contains(target) ? lineTexts
           : dates.contains(target) ? dateTexts
                                    : boxTexts;
}

} // namespace

FormAction FormAction::fromLine(const QString &line)
{
    static const QRegularExpression shape(
        QRegularExpression::anchoredPattern("(\\w+) ?(\\w*)(?: '(.*)')?"));
    const QRegularExpressionMatch match = shape.match(line);
    return {match.captured(1), match.captured(2), match.captured(3)};
}

QString FormAction::toLine() const
{
    const QString start = target.isEmpty() ? verb : verb + ' ' + target;
    return text.isNull() ? start : start + " '" + text + '\'';
}

FormAction FormAction::random(std::mt19937 &random)
{
    const QString target = random() % 2 ? anyOf(edits, random) : anyOf(boxes, random);
    switch (random() % 32) {
    case 0:
    case 1:
    case 2:
    case 3:
        return {"type", target, anyOf(textsFor(target), random)};
    case 4:
    case 5:
        return {"paste", target, anyOf(textsFor(target), random)};
    case 6:
        return {"replace", target, anyOf(textsFor(target), random)};
    case 7:
    case 8:
    case 9:
        return {"key", target, anyOf(keys, random)};
    case 10:
    case 11:
    case 12:
        return {"choose", anyOf(boxes, random), QString::number(random() % 4)};
    case 13:
        return {"step", anyOf(boxes, random), random() % 2 ? "Up" : "Down"};
    case 14:
        return {"focus", target, {}};
    case 15:
        return {"click", anyOf(buttons, random), {}};
    case 16:
        return {"load", {}, QString::number(random() % FormContent::Editions)};
    case 17:
        return {"refresh", anyOf(boxes, random), {}};
    case 18:
        return {"destroy", anyOf(mortal, random), {}};
    case 19:
        return {"create", anyOf(mortal, random), {}};
    case 20:
        return {"locale", {}, anyOf(FormTexts::locales(), random)};
    case 26:
    case 27:
        return {"remake", anyOf(mortal, random), {}};
    case 21:
    case 22:
        return {"reload", {}, QString::number(random() % FormContent::Editions)};
    case 23:
        return {"fill", {}, anyOf(fills, random)};
    case 24:
        return {"pick", anyOf(dates, random), anyOf(days, random)};
    case 25:
        return {"complete", anyOf(boxes, random), anyOf(beginnings, random)};
    default:
        const QString name = anyOf(valueTexts.keys(), random);
        return {"set", name, anyOf(valueTexts[name], random)};
    }
}

QVector<FormAction> FormAction::simpler() const
{
    QVector<FormAction> found;
    if (verb == "replace")
        found << FormAction{"paste", target, text};
    if (verb == "paste")
        found << FormAction{"type", target, text};
    if (verb == "type" || verb == "paste" || verb == "replace" || verb == "set") {
        for (int i = 0; i < text.size(); ++i)
            found << FormAction{verb, target, QString(text).remove(i, 1)};
    }
    return found;
}

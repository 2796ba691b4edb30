// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QChar>
#include <QString>

/// A value of a one-character column.
class FieldConstValue
{
public:
    /// An ASCII character.
    constexpr explicit FieldConstValue(char character) : m_character(character) {}

    /// The value as a character, and as a cell holds it.
    constexpr QChar character() const { return QLatin1Char(m_character); }
    QString toString() const { return QString(character()); }

private:
    char m_character;
};

/// Whether an order is active.
struct Statuses
{
    static constexpr FieldConstValue Active{'A'};
    static constexpr FieldConstValue Withdrawn{'W'};
};

/// The side of an order.
struct Buysells
{
    static constexpr FieldConstValue Buy{'B'};
    static constexpr FieldConstValue Sell{'S'};
};

/// Whether an order names its counterparty.
struct Anonyms
{
    static constexpr FieldConstValue Anonym{'D'};
    static constexpr FieldConstValue Address{'A'};
};

/// The right that an option gives.
struct OptioType
{
    static constexpr FieldConstValue Put{'P'};
    static constexpr FieldConstValue Call{'C'};
};

/// How an option is settled.
struct OptioCalc
{
    static constexpr FieldConstValue AmerA{'A'};
    static constexpr FieldConstValue AmerB{'B'};
};

/// The kind of security that a board trades.
struct SecTypes
{
    static constexpr FieldConstValue Futures{'F'};
    static constexpr FieldConstValue Option{'O'};
    static constexpr FieldConstValue Spred{'H'};
    static constexpr FieldConstValue Risk{'K'};
    static constexpr FieldConstValue Indexes{'I'};
};

/// The direction in which a price moved.
struct PriceDirs
{
    static constexpr FieldConstValue Asc{'A'};
    static constexpr FieldConstValue Desc{'D'};
};

#pragma once

#include <QString>

// What the texts of a form mean, read and written without the library.
namespace FormTexts {

// The locales that numbers are typed in, by name.
QStringList locales();

// A number of the system form as it is stored after it was read: "007" is "7", ".5" is "0.5".
// A text that is none is left as it is.
QString canonical(const QString &systemText);
bool isNumber(const QString &systemText);
// The system form of what a field shows; what is no number stays as it is.
QString read(const QString &shown, const QString &locale);
// The same for a text whose group separators must stand where they belong.
QString readStrictly(const QString &shown, const QString &locale);
// What a field shows of a value.
QString write(const QString &value, const QString &locale);
// Whether a text that is a number is written as the locale does it, but for what is being typed: a
// point without digits on one side, the minus of a zero.
bool isTidy(const QString &shown, const QString &locale);
// The sum of two fields, by the rules of Summator.
QString sum(const QString &summand, const QString &addendum);

// The system form of a date in any of the forms that a program gives; empty for none.
QString date(const QString &systemText);
// The same of a typed text (dd.MM.yy); its date lies in this century.
QString readDate(const QString &shown);
QString writeDate(const QString &systemText);

} // namespace FormTexts

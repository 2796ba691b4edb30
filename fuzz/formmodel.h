#pragma once

#include "formcontent.h"

#include <QMap>
#include <QSet>
#include <QStringList>

// What a form (see BoundForm) must hold and show after each action: names, texts and rows, no
// widgets. It has the hub, the controls and the selector boxes as their headers tell of them.
class FormModel
{
public:
    FormModel();

    // What a program does.
    void set(const QString &name, const QString &value);
    void load(int edition);
    void refresh(const QString &box);
    void destroy(const QString &control);
    void create(const QString &control);
    void setLocale(const QString &locale);

    // What a user does. The text of a control after an edit is taken as it is, also the same again.
    void edit(const QString &control, const QString &text, bool again = false);
    void click(const QString &control);
    void choose(const QString &box, int row);
    // The rows that complete a text; trying one after the other up to a place.
    QVector<FormContent::Row> completions(const QString &box, const QString &text) const;
    void complete(const QString &box, const QString &text, int place);
    // A date of the calendar, in any system form.
    void pick(const QString &control, const QString &day);
    // Up and down in a list.
    void step(const QString &box, int rows);
    void leave(const QString &control);

    QMap<QString, QString> values() const { return m_values; }
    // What a control shows: its text, or "x" where it is checked.
    QString shown(const QString &control) const { return m_controls[control].text; }
    // The names of the rows of a box.
    QStringList listed(const QString &box) const;
    bool exists(const QString &control) const { return m_controls[control].exists; }
    // Whether a user gets at it.
    bool isAtHand(const QString &control) const;
    QString page() const { return m_page; }
    QString locale() const { return m_locale; }

private:
    using Row = FormContent::Row;
    enum Kind { Line, Number, Date, Check, Radio, Sum, Box, Selector, Page };
    struct Control
    {
        Kind kind = Line;
        QString name;   // in the hub
        QString page;   // that it stands on
        QString detail; // the longest text; the value of a radio button
        bool exists = true;
        bool bound = true; // the hub writes to it
        QSet<QString> heard;
        QString text;
        QString value;
        QString given; // the date that the text was set from
        QString addendum;
    };
    struct List
    {
        int edition = 0;
        int stockId = 0;
        QString stock, board; // the codes by which it is narrowed
        Row current;
        QString code;
        bool unreported = false;
    };

    void add(const QString &id, Kind kind, const QString &name, const QString &page = {},
             const QString &detail = {});
    void put(const QString &name, const QString &value, const QString &from);
    void deliver(const QString &id, const QString &name, const QString &value);
    void deliverToBox(const QString &id, const QString &name, const QString &value);
    void bind(const QString &id);
    void notify(const QString &id, const QString &name, const QString &value);
    QString pageOfBoard() const;
    void showPage();
    void check(const QString &id, bool checked);
    void giveDate(const QString &id, const QString &date);
    void takeDate(const QString &id, const QString &value);
    void addUp(const QString &id);

    QVector<Row> rows(const QString &box) const;
    bool hasChoice(const QString &box) const;
    Row rowOfText(const QString &box, Qt::CaseSensitivity sensitivity) const;
    Row rowOfTypedText(const QString &box) const;
    QString content(const QString &box, const QString &name) const;
    void setCurrent(const QString &box, const Row &row);
    void chooseRow(const QString &box, const Row &row);
    void activate(const QString &box, const Row &row);
    void report(const QString &box);
    void narrow(const QString &box, const QString &stock, const QString &board);
    template <typename Change> void refreshAround(const QString &box, Change change);

    QMap<QString, QString> m_values;
    QMap<QString, int> m_writes;
    QMap<QString, Control> m_controls;
    QMap<QString, List> m_lists;
    QStringList m_order; // in which they were bound
    QString m_locale;
    QString m_page; // that is shown
    int m_edition = 0;
    int m_stock = 0;
    int m_board = 0;
};

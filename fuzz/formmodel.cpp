#include "formmodel.h"

#include "formtexts.h"

#include <algorithm>

using FormContent::Row;

namespace {

const Row none;

const QMap<QString, QStringList> propertiesOfBoxes{
    {"exchange", {"StockId", "Stock", "StockCode"}},
    {"board", {"StockId", "StockCode", "BoardId", "Board", "BoardCode"}},
    {"security",
     {"StockId", "StockCode", "BoardId", "BoardCode", "SecurityId", "Security", "SecurityName"}}};

// What a box narrows its list by, and does not report.
bool isCondition(const QString &box, const QString &name)
{
    return (box != "exchange" && name.startsWith("Stock")) ||
           (box == "security" && name.startsWith("Board"));
}

} // namespace

FormModel::FormModel() : m_locale(FormTexts::locales().first())
{
    add("exchange", Box, "StockId");
    add("board", Box, "BoardId");
    add("security", Box, "SecurityId");
    add("price", Number, "Price");
    add("quantity", Number, "Quantity");
    add("total", Number, "Total");
    add("till", Date, "GoodTill");
    add("till2", Date, "GoodTill");
    add("when", Line, "GoodTill");
    add("buy", Radio, "Side", {}, "B");
    add("sell", Radio, "Side", {}, "S");
    add("hidden", Check, "Hidden");
    add("comment", Line, "Comment", {}, "8");
    add("mirror", Line, "Comment");
    add("details", Selector, {});
    add("pageA", Page, {});
    add("noteA", Line, "Note", "pageA");
    add("offset", Number, "Offset", "pageA");
    add("sum", Sum, "Total", "pageA");
    add("pageB", Page, {});
    add("noteB", Line, "Note", "pageB");
    add("price2", Number, "Price", "pageB");
    add("remark", Line, "Remark", "pageB");
    for (const QString &box : {QString("exchange"), QString("board"), QString("security")}) {
        for (const QString &name : propertiesOfBoxes[box]) {
            if (isCondition(box, name))
                continue;
            m_controls[box].heard << name;
            m_values[name] = content(box, name);
        }
    }
    m_values["Hidden"] = "N";
    for (const char *id : {"noteA", "offset", "sum", "noteB", "price2", "remark"})
        m_controls[id].heard.clear();
}

void FormModel::add(const QString &id, Kind kind, const QString &name, const QString &page,
                    const QString &detail)
{
    Control control;
    control.kind = kind;
    control.name = name;
    control.page = page;
    control.detail = detail;
    if (kind == Box)
        m_lists[id] = {};
    else if (!name.isEmpty())
        control.heard << name;
    if (!name.isEmpty())
        m_values[name] = QString();
    m_controls[id] = control;
    m_order << id;
}

bool FormModel::isAtHand(const QString &control) const
{
    const Control &asked = m_controls[control];
    return asked.exists && (asked.page.isEmpty() || asked.page == m_page);
}

// The hub.

void FormModel::set(const QString &name, const QString &value)
{
    if (m_values.value(name) != value)
        put(name, value, {});
}

void FormModel::put(const QString &name, const QString &value, const QString &from)
{
    m_values[name] = value;
    const int write = ++m_writes[name];
    const QStringList order = m_order;
    for (int i = order.size() - 1; i >= 0 && m_writes[name] == write; --i) {
        if (order[i] != from && m_controls[order[i]].exists && m_controls[order[i]].bound)
            deliver(order[i], name, value);
    }
}

void FormModel::notify(const QString &id, const QString &name, const QString &value)
{
    if (m_controls[id].heard.contains(name) && m_values[name] != value)
        put(name, value, id);
}

void FormModel::deliver(const QString &id, const QString &name, const QString &value)
{
    Control &control = m_controls[id];
    if (control.kind == Box) {
        if (propertiesOfBoxes[id].contains(name))
            deliverToBox(id, name, value);
    } else if (control.kind == Selector) {
        int *const place = name == "StockId" ? &m_stock : name == "BoardId" ? &m_board : nullptr;
        if (place && *place != value.toInt()) {
            *place = value.toInt();
            showPage();
        }
    } else if (control.kind == Sum) {
        if (name == "Price")
            control.value = value;
        else if (name == "Offset")
            control.addendum = value;
        else
            return;
        addUp(id);
    } else if (control.name != name) {
        return;
    } else if (control.kind == Line) {
        control.text = control.detail.isEmpty() ? value : value.left(control.detail.toInt());
    } else if (control.kind == Number) {
        if (FormTexts::write(control.value, m_locale) != FormTexts::write(value, m_locale))
            control.text = FormTexts::write(value, m_locale);
        control.value = value;
    } else if (control.kind == Date) {
        const QString date = FormTexts::date(value);
        if (date == value && date == control.value)
            return;
        giveDate(id, date);
    } else if (control.kind == Check) {
        if (value == "Y" || value == "N")
            control.text = value == "Y" ? "x" : "";
    } else if (control.kind == Radio) {
        check(id, value == control.detail);
    }
}

void FormModel::bind(const QString &id)
{
    Control &control = m_controls[id];
    if (!m_order.contains(id))
        m_order << id;
    control.bound = true;
    if (control.kind == Box) {
        for (const QString &name : propertiesOfBoxes[id]) {
            if (!isCondition(id, name))
                control.heard << name;
            deliverToBox(id, name, m_values[name]);
        }
    } else if (control.kind == Sum) {
        control.heard << control.name;
        deliver(id, "Price", m_values["Price"]);
        deliver(id, "Offset", m_values["Offset"]);
    } else {
        control.heard << control.name;
        deliver(id, control.name, m_values[control.name]);
    }
}

// Where other sessions are open now, securities are read anew without being asked.
void FormModel::load(int edition)
{
    const bool isOther =
        FormContent::stocks(edition).size() != FormContent::stocks(m_edition).size();
    m_edition = edition;
    if (isOther && m_controls["security"].exists)
        refresh("security");
}

// Pages and controls that come and go.

QString FormModel::pageOfBoard() const
{
    if (m_stock == 1 && (m_board == 1 || m_board == 2))
        return "pageA";
    if ((m_stock == 1 && m_board == 3) || (m_stock == 2 && m_board == 1))
        return "pageB";
    return {};
}

void FormModel::showPage()
{
    const QString page = pageOfBoard();
    m_page = m_controls.value(page).exists && !page.isEmpty() ? page : QString();
    for (Control &control : m_controls) {
        if (!control.page.isEmpty())
            control.heard.clear();
    }
    const QStringList order{"noteA", "offset", "sum", "noteB", "price2", "remark"};
    for (const QString &id : order) {
        if (!m_page.isEmpty() && m_controls[id].page == m_page)
            bind(id);
    }
    if (m_page == "pageA")
        notify("sum", "Total", m_controls["sum"].text);
}

void FormModel::destroy(const QString &id)
{
    for (const QString &each : m_controls.keys()) {
        if (each != id && m_controls[each].page != id)
            continue;
        m_controls[each].exists = false;
        m_order.removeAll(each);
    }
    if (m_page == id)
        m_page.clear();
}

void FormModel::create(const QString &id)
{
    for (const QString &each : m_controls.keys()) {
        if (each != id && m_controls[each].page != id)
            continue;
        Control &control = m_controls[each];
        control.exists = true;
        control.bound = false;
        control.heard.clear();
        control.text.clear();
        control.value.clear();
        control.addendum.clear();
    }
    if (m_controls[id].kind == Page) {
        // The other one stays bound, sums and all.
        if (id == pageOfBoard())
            showPage();
        return;
    }
    if (m_controls[id].kind == Box) {
        m_lists[id] = {};
        m_lists[id].edition = m_edition;
    }
    bind(id);
}

void FormModel::setLocale(const QString &locale)
{
    if (locale == m_locale)
        return;
    m_locale = locale;
    for (Control &control : m_controls) {
        if (control.exists && control.kind == Number)
            control.text = FormTexts::write(control.value, locale);
    }
}

// The value controls.

void FormModel::edit(const QString &id, const QString &text, bool again)
{
    Control &control = m_controls[id];
    if (text == control.text && (!again || control.kind == Date))
        return;
    control.text = text;
    if (control.kind == Box) {
        report(id);
    } else if (control.kind == Line) {
        notify(id, control.name, text);
    } else if (control.kind == Date) {
        const bool isGiven = text == FormTexts::writeDate(control.given);
        takeDate(id, isGiven ? control.given : FormTexts::readDate(text));
    } else if (control.kind == Number) {
        const QString value = FormTexts::readStrictly(text, m_locale);
        if (value == control.value ||
            FormTexts::write(value, m_locale) == FormTexts::write(control.value, m_locale))
            return;
        control.value = value;
        notify(id, control.name, value);
    }
}

void FormModel::giveDate(const QString &id, const QString &date)
{
    m_controls[id].given = date;
    m_controls[id].text = FormTexts::writeDate(date);
    takeDate(id, date);
}

void FormModel::takeDate(const QString &id, const QString &value)
{
    m_controls[id].value = value;
    notify(id, m_controls[id].name, value);
}

void FormModel::click(const QString &id)
{
    Control &control = m_controls[id];
    if (control.kind == Check) {
        control.text = control.text.isEmpty() ? "x" : "";
        notify(id, control.name, control.text.isEmpty() ? "N" : "Y");
        return;
    }
    check(id, true);
    notify(id, control.name, control.detail);
}

// Of several buttons one is checked.
void FormModel::check(const QString &id, bool checked)
{
    if (checked)
        m_controls[id == "buy" ? "sell" : "buy"].text.clear();
    m_controls[id].text = checked ? "x" : "";
}

void FormModel::addUp(const QString &id)
{
    Control &control = m_controls[id];
    const QString sum = FormTexts::sum(control.value, control.addendum);
    if (sum == control.text)
        return;
    control.text = sum;
    notify(id, control.name, sum);
}

// The selector boxes.

QVector<Row> FormModel::rows(const QString &box) const
{
    const List &list = m_lists[box];
    const int edition = list.edition;
    const auto stockOf = [edition](const Row &row) {
        return FormContent::stockCode(edition, row.stock);
    };
    const auto boardOf = [edition](const Row &row) {
        return FormContent::boardCode(edition, row.stock, row.board);
    };
    QVector<Row> rows = box == "exchange" ? FormContent::stocks(edition)
                        : box == "board"  ? FormContent::boards(edition)
                                          : FormContent::securities(edition);
    std::reverse(rows.begin(), rows.end());
    std::stable_sort(rows.begin(), rows.end(), [&](const Row &a, const Row &b) {
        if (box == "exchange")
            return a.code < b.code;
        if (box == "board")
            return a.stock != b.stock ? a.stock < b.stock : a.code < b.code;
        return std::make_tuple(stockOf(a), boardOf(a), a.name) <
               std::make_tuple(stockOf(b), boardOf(b), b.name);
    });
    const auto isElsewhere = [&](const Row &row) {
        if (box == "board")
            return !list.stock.isEmpty() && stockOf(row) != list.stock;
        return box == "security" && !list.stock.isEmpty() && !list.board.isEmpty() &&
               (stockOf(row) != list.stock || boardOf(row) != list.board);
    };
    rows.erase(std::remove_if(rows.begin(), rows.end(), isElsewhere), rows.end());
    std::stable_sort(rows.begin(), rows.end(), [](const Row &a, const Row &b) {
        return a.name.compare(b.name, Qt::CaseInsensitive) < 0;
    });
    return rows;
}

QStringList FormModel::listed(const QString &box) const
{
    QStringList names;
    for (const Row &row : rows(box))
        names << row.name;
    return names;
}

bool FormModel::hasChoice(const QString &box) const
{
    const Row &current = m_lists[box].current;
    return !(current == none) && current.name == m_controls[box].text;
}

Row FormModel::rowOfText(const QString &box, Qt::CaseSensitivity sensitivity) const
{
    const QString text = m_controls[box].text;
    const Row &current = m_lists[box].current;
    if (!(current == none) && current.name.compare(text, sensitivity) == 0)
        return current;
    for (const Row &row : rows(box)) {
        if (row.name.compare(text, sensitivity) == 0)
            return row;
    }
    return none;
}

Row FormModel::rowOfTypedText(const QString &box) const
{
    return rowOfText(box, box == "security" ? Qt::CaseInsensitive : Qt::CaseSensitive);
}

// What a box's property holds.
QString FormModel::content(const QString &box, const QString &name) const
{
    const Row row = rowOfText(box, Qt::CaseInsensitive);
    if (name == "Security")
        return m_lists[box].code;
    if (name == "SecurityId")
        return QString::number(row.security);
    if (name == "SecurityName")
        return row.name;
    if (name == "BoardId")
        return QString::number(row.board);
    if (name == "StockId")
        return QString::number(row.stock);
    return name.endsWith("Code") ? row.code : m_controls[box].text;
}

void FormModel::deliverToBox(const QString &box, const QString &name, const QString &value)
{
    List &list = m_lists[box];
    if (name == "StockId" && box != "exchange")
        return narrow(box, FormContent::stockCode(m_edition, value.toInt()), list.board);
    if (name == "StockCode" && box != "exchange")
        return narrow(box, value, list.board);
    if (name == "BoardId" && box == "security")
        return narrow(box, list.stock,
                      FormContent::boardCode(m_edition, list.stockId, value.toInt()));
    if (name == "BoardCode" && box == "security")
        return narrow(box, list.stock, value);
    if (name == "SecurityName")
        return edit(box, value);
    if (name == "Security" && value == list.code)
        return;
    for (const Row &row : rows(box)) {
        const bool isIt = name == "StockId"      ? row.stock == value.toInt()
                          : name == "BoardId"    ? row.board == value.toInt()
                          : name == "SecurityId" ? QString::number(row.security) == value
                          : name.endsWith("Code") || name == "Security"
                              ? row.code.compare(value, Qt::CaseInsensitive) == 0
                              : false;
        if (isIt)
            return chooseRow(box, row);
    }
}

// A row that a program chooses.
void FormModel::chooseRow(const QString &box, const Row &row)
{
    const QString before = m_controls[box].text;
    const bool isOther = !(row == m_lists[box].current);
    setCurrent(box, row);
    if (isOther && m_controls[box].text == before)
        report(box);
}

void FormModel::narrow(const QString &box, const QString &stock, const QString &board)
{
    List &list = m_lists[box];
    if (list.stock == stock && list.board == board)
        return;
    refreshAround(box, [&] {
        if (list.stock != stock)
            list.stockId = FormContent::stockId(m_edition, stock);
        list.stock = stock;
        list.board = board;
    });
    setCurrent(box, none);
}

void FormModel::refresh(const QString &box)
{
    refreshAround(box, [&] { m_lists[box].edition = m_edition; });
}

// Keeps the choice or the typed text, and reports when it no longer stands for the same row.
template <typename Change> void FormModel::refreshAround(const QString &box, Change change)
{
    List &list = m_lists[box];
    Control &control = m_controls[box];
    const bool wasChoice = hasChoice(box);
    const Row key = wasChoice ? list.current : control.text.isEmpty() ? none : rowOfTypedText(box);
    change();
    const QVector<Row> now = rows(box);
    const int place = now.indexOf(key);
    list.current = place < 0 ? none : now[place];
    if (wasChoice)
        control.text = list.current.name;
    const bool stoodForARow = !(key == none);
    if (stoodForARow && (place < 0 || !(rowOfTypedText(box) == key)))
        report(box);
    else
        list.unreported = !stoodForARow;
}

void FormModel::setCurrent(const QString &box, const Row &row)
{
    List &list = m_lists[box];
    const bool isOther = !(list.current == row);
    list.current = row;
    edit(box, row.name);
    if (isOther && hasChoice(box) && list.unreported)
        report(box);
}

void FormModel::report(const QString &box)
{
    List &list = m_lists[box];
    list.unreported = false;
    const QString text = m_controls[box].text;
    const Row row = rowOfTypedText(box);
    if (row == none && text.isEmpty())
        list.current = none;
    activate(box, row);
    const QString name = box == "exchange" ? "Stock" : box == "board" ? "Board" : "SecurityName";
    notify(box, name, content(box, name));
}

void FormModel::activate(const QString &box, const Row &row)
{
    const QString kind = box == "exchange" ? "Stock" : box == "board" ? "Board" : "Security";
    m_lists[box].code = row.code;
    notify(box, kind + "Id", content(box, kind + "Id"));
    const QString code = box == "security" ? "Security" : kind + "Code";
    notify(box, code, content(box, code));
    if (box == "security")
        notify(box, "SecurityName", content(box, "SecurityName"));
}

void FormModel::choose(const QString &box, int row)
{
    const QVector<Row> all = rows(box);
    if (row < 0 || row >= all.size())
        return;
    setCurrent(box, all[row]);
    activate(box, all[row]);
}

QVector<Row> FormModel::completions(const QString &box, const QString &text) const
{
    QVector<Row> found;
    for (const Row &row : rows(box)) {
        if (row.name.startsWith(text, Qt::CaseInsensitive))
            found << row;
    }
    return found;
}

void FormModel::complete(const QString &box, const QString &text, int place)
{
    const QVector<Row> found = completions(box, text);
    for (int i = 0; i < place; ++i)
        edit(box, found[i].name);
    setCurrent(box, found[place - 1]);
    activate(box, found[place - 1]);
}

void FormModel::pick(const QString &id, const QString &day)
{
    const QString date = FormTexts::date(day);
    if (date == m_controls[id].value)
        return;
    giveDate(id, date);
}

void FormModel::step(const QString &box, int by)
{
    choose(box, rows(box).indexOf(m_lists[box].current) + by);
}

void FormModel::leave(const QString &id)
{
    Control &control = m_controls[id];
    if (control.kind == Date && FormTexts::readDate(control.text).isEmpty())
        edit(id, QString());
    if (control.kind != Box || control.text.isEmpty() || hasChoice(id))
        return;
    QVector<Row> named = rows(id);
    const auto isOther = [&](const Row &row) {
        return row.name.compare(control.text, Qt::CaseInsensitive) != 0;
    };
    named.erase(std::remove_if(named.begin(), named.end(), isOther), named.end());
    if (named.size() == 1)
        setCurrent(id, named.first());
}

#include "foldedtext_p.h"

#include <algorithm>
#include <vector>

namespace {

ushort foldedUnit(ushort unit)
{
    if (unit < 0x80)
        return unit >= 'A' && unit <= 'Z' ? ushort(unit + ('a' - 'A')) : unit;
    return QChar::isSurrogate(unit) ? unit : ushort(QChar::toCaseFolded(uint(unit)));
}

// A text's row and the four of its folded characters that are being sorted by.
struct Item
{
    quint64 key;
    int row;
};

bool operator<(const Item &a, const Item &b)
{
    return a.key != b.key ? a.key < b.key : a.row < b.row;
}

bool hasPairs(const QString &text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) { return c.isSurrogate(); });
}

// Sorts by four characters at a time, going on into the runs that are equal so far.
class PrefixSort
{
public:
    explicit PrefixSort(const QVector<QString> &texts) : m_texts(texts) {}

    void sort(Item *begin, Item *end, int depth) const
    {
        if (end - begin < SmallRun || depth >= DeepestPrefix) {
            std::sort(begin, end, [this](const Item &a, const Item &b) { return less(a, b); });
            return;
        }
        for (Item *item = begin; item != end; ++item)
            item->key = key(m_texts.at(item->row), depth);
        std::sort(begin, end);
        for (Item *run = begin; run != end;) {
            Item *const next =
                std::find_if(run, end, [run](const Item &i) { return i.key != run->key; });
            if (next - run > 1 && !allEqual(run, next, depth + UnitsPerKey))
                sort(run, next, depth + UnitsPerKey);
            run = next;
        }
    }

private:
    static constexpr int SmallRun = 24;
    static constexpr int UnitsPerKey = 4;
    static constexpr int DeepestPrefix = 64;

    static quint64 key(const QString &text, int depth)
    {
        const QChar *const units = text.constData();
        quint64 key = 0;
        for (int i = depth; i < depth + UnitsPerKey; ++i)
            key = key << 16 | (i < text.size() ? foldedUnit(units[i].unicode()) : 0);
        return key;
    }

    // True when texts that are equal up to the depth have nothing behind it.
    bool allEqual(const Item *begin, const Item *end, int depth) const
    {
        const int size = m_texts.at(begin->row).size();
        return size <= depth && std::all_of(begin, end, [this, size](const Item &item) {
                   return m_texts.at(item.row).size() == size;
               });
    }

    bool less(const Item &a, const Item &b) const
    {
        const int order =
            QString::compare(m_texts.at(a.row), m_texts.at(b.row), Qt::CaseInsensitive);
        return order != 0 ? order < 0 : a.row < b.row;
    }

    const QVector<QString> &m_texts;
};

} // namespace

QString FoldedText::folded(const QString &text)
{
    QString result(text.size(), Qt::Uninitialized);
    std::transform(text.begin(), text.end(), result.begin(),
                   [](QChar c) { return QChar(foldedUnit(c.unicode())); });
    if (hasPairs(text)) {
        for (int i = 1; i < text.size(); ++i) {
            if (text.at(i).isLowSurrogate() && text.at(i - 1).isHighSurrogate()) {
                const uint pair = QChar::surrogateToUcs4(text.at(i - 1), text.at(i));
                result[i] = QChar(QChar::lowSurrogate(QChar::toCaseFolded(pair)));
            }
        }
    }
    return result;
}

QString FoldedText::completionKey(const QString &text)
{
    constexpr ushort Caseless = 0x4e00;
    QString key;
    key.reserve(2 * text.size());
    for (const QChar c : folded(text)) {
        key += QChar(ushort(Caseless + c.row()));
        key += QChar(ushort(Caseless + c.cell()));
    }
    return key;
}

size_t FoldedText::hash(const QString &text)
{
    // FNV-1a. The halves of surrogate pairs go in unfolded: folding never changes the first
    // half of a pair, and pairs that differ by case must not differ in their hash.
    quint64 hash = 14695981039346656037ULL;
    for (const QChar c : text) {
        if (!c.isLowSurrogate())
            hash = (hash ^ foldedUnit(c.unicode())) * 1099511628211ULL;
    }
    return size_t(hash ^ hash >> 32);
}

QVector<int> FoldedText::ascending(const QVector<QString> &texts)
{
    std::vector<Item> items(size_t(texts.size()));
    for (int row = 0; row < texts.size(); ++row)
        items[size_t(row)] = {0, row};
    if (std::none_of(texts.begin(), texts.end(), hasPairs))
        PrefixSort(texts).sort(items.data(), items.data() + items.size(), 0);
    else
        std::stable_sort(items.begin(), items.end(), [&texts](const Item &a, const Item &b) {
            return QString::compare(texts.at(a.row), texts.at(b.row), Qt::CaseInsensitive) < 0;
        });
    QVector<int> rows(texts.size());
    std::transform(items.begin(), items.end(), rows.begin(), [](const Item &i) { return i.row; });
    return rows;
}

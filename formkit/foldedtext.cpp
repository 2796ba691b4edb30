// SPDX-License-Identifier: BSD-3-Clause
#include "foldedtext_p.h"

#include <algorithm>
#include <numeric>
#include <tuple>
#include <vector>

namespace {

ushort foldedUnit(ushort unit)
{
    if (unit < 0x80)
        return unit >= 'A' && unit <= 'Z' ? ushort(unit + ('a' - 'A')) : unit;
    return QChar::isSurrogate(unit) ? unit : ushort(QChar::toCaseFolded(uint(unit)));
}

bool hasPairs(const QString &text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) { return c.isSurrogate(); });
}

int compare(const QString &a, const QString &b)
{
    return QString::compare(a, b, Qt::CaseInsensitive);
}

// Numbers the characters that occur in the texts, in their folded order and from 1 on, so that
// many of them fit one number.
class Alphabet
{
public:
    Alphabet() : m_codes(UnitCount) {}

    // To be told of every text, and then number() called once, before keys are asked for.
    void add(const QString &text)
    {
        for (const QChar c : text)
            m_codes[c.unicode()] = 1;
    }
    void number()
    {
        std::vector<ushort> letters;
        for (uint unit = 0; unit < UnitCount; ++unit) {
            if (m_codes[unit] != 0)
                letters.push_back(foldedUnit(ushort(unit)));
        }
        std::sort(letters.begin(), letters.end());
        letters.erase(std::unique(letters.begin(), letters.end()), letters.end());
        for (uint unit = 0; unit < UnitCount; ++unit) {
            if (m_codes[unit] != 0)
                m_codes[unit] = codeIn(letters, foldedUnit(ushort(unit)));
        }
        while (letters.size() >> m_bits != 0)
            ++m_bits;
    }

    int charactersPerKey() const { return 64 / m_bits; }
    bool hasPairs() const
    {
        const auto first = m_codes.begin() + 0xd800;
        return std::any_of(first, first + 0x800, [](ushort code) { return code != 0; });
    }

    // The characters of a text from a position on, 0 where it has ended.
    quint64 key(const QString &text, int position) const
    {
        const QChar *const units = text.constData();
        const int last = position + charactersPerKey();
        quint64 key = 0;
        for (int i = position; i < last; ++i)
            key = key << m_bits | (i < text.size() ? m_codes[units[i].unicode()] : 0);
        return key;
    }
    bool hasEnded(quint64 key) const { return (key & ((1u << m_bits) - 1)) == 0; }

private:
    static constexpr uint UnitCount = 0x10000;

    static ushort codeIn(const std::vector<ushort> &letters, ushort letter)
    {
        const auto found = std::lower_bound(letters.begin(), letters.end(), letter);
        return ushort(found - letters.begin() + 1);
    }

    std::vector<ushort> m_codes;
    int m_bits = 1;
};

// A text's row and those of its characters that are being sorted by.
struct Item
{
    quint64 key;
    quint64 nextKey;
    int row;

    bool operator<(const Item &other) const
    {
        return std::tie(key, nextKey, row) < std::tie(other.key, other.nextKey, other.row);
    }
    bool hasKeysOf(const Item &other) const { return key == other.key && nextKey == other.nextKey; }
};

// Sorts by as many characters at a time as two keys hold, going on into the runs that are
// equal so far.
class PrefixSort
{
public:
    PrefixSort(const QVector<QString> &texts, const Alphabet &alphabet)
        : m_texts(texts), m_alphabet(alphabet)
    {
    }

    void sort(Item *begin, Item *end, int depth) const
    {
        if (depth >= DeepestPrefix) {
            std::sort(begin, end, [this](const Item &a, const Item &b) { return less(a, b); });
            return;
        }
        const int perKey = m_alphabet.charactersPerKey();
        for (Item *item = begin; item != end; ++item) {
            const QString &text = m_texts.at(item->row);
            item->key = m_alphabet.key(text, depth);
            item->nextKey = m_alphabet.key(text, depth + perKey);
        }
        std::sort(begin, end);
        for (Item *run = begin; run != end;) {
            Item *const next =
                std::find_if(run, end, [run](const Item &i) { return !i.hasKeysOf(*run); });
            if (next - run > 1 && !m_alphabet.hasEnded(run->nextKey))
                sort(run, next, depth + 2 * perKey);
            run = next;
        }
    }

private:
    static constexpr int DeepestPrefix = 64;

    bool less(const Item &a, const Item &b) const
    {
        const int order = compare(m_texts.at(a.row), m_texts.at(b.row));
        return order != 0 ? order < 0 : a.row < b.row;
    }

    const QVector<QString> &m_texts;
    const Alphabet &m_alphabet;
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
    const QString foldedText = folded(text);
    for (const QChar c : foldedText) {
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

QVector<int> FoldedText::ascending(int count, const std::function<QString(int)> &textOf)
{
    QVector<QString> texts(count);
    Alphabet alphabet;
    for (int row = 0; row < count; ++row) {
        texts[row] = textOf(row);
        // Now rather than in a walk of its own, to which each text would be far away again.
        alphabet.add(texts.at(row));
    }
    alphabet.number();
    QVector<int> rows(count);
    std::iota(rows.begin(), rows.end(), 0);
    if (alphabet.hasPairs()) {
        std::stable_sort(rows.begin(), rows.end(),
                         [&texts](int a, int b) { return compare(texts.at(a), texts.at(b)) < 0; });
        return rows;
    }
    std::vector<Item> items(rows.size());
    for (const int row : std::as_const(rows))
        items[size_t(row)].row = row;
    PrefixSort(texts, alphabet).sort(items.data(), items.data() + items.size(), 0);
    std::transform(items.begin(), items.end(), rows.begin(), [](const Item &i) { return i.row; });
    return rows;
}

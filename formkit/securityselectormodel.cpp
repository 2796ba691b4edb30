// SPDX-License-Identifier: BSD-3-Clause
#include "securityselectormodel.h"

#include "modelrefresh_p.h"
#include "populatelater_p.h"
#include "securityrows_p.h"
#include "worker_p.h"

#include <hostapi/icore.h>
#include <hostapi/idecoder.h>
#include <hostapi/securitiessessionfilter.h>

#include <QDebug>
#include <QPointer>

#include <mutex>
#include <optional>
#include <tuple>
#include <typeinfo>

namespace {

constexpr int MostRowsAtOnce = 50000;

// Lets a worker call filter() of a model that may be destroyed at any time.
class FilterGate
{
public:
    explicit FilterGate(const SecuritySelectorModel *model) : m_model(model) {}

    bool filter(const Record &record)
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        return m_model && m_model->filter(record);
    }
    // Waits for a call that is under way.
    void close()
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_model = nullptr;
    }
    std::mutex &mutex() { return m_mutex; }

private:
    std::mutex m_mutex;
    const SecuritySelectorModel *m_model;
};

} // namespace

bool SecuritySelectorModel::Data::operator<(const Data &other) const
{
    return std::tie(stockCode, boardCode, secName) <
           std::tie(other.stockCode, other.boardCode, other.secName);
}

struct SecuritySelectorModel::Private
{
    explicit Private(SecuritySelectorModel *model);
    Q_DISABLE_COPY(Private)

    std::function<bool(const Record &)> filterForWorker();
    SecurityRows readRows() const;
    void takeOver(PopulateLater::Rows *rows);

    SecuritySelectorModel *const q;
    ModelRefresh *const refresh;
    Table *const table;
    const SecurityColumns columns;
    SecurityRows rows;
    std::unique_ptr<ValueFilter> sessions;
    ItemDataRole defaultDataRole = SecurityNameRole;
    std::optional<bool> populatesLater;
    // That of a subclass, while a worker may call it.
    std::shared_ptr<FilterGate> gate;
    bool isPopulating = false;
    PopulateLater later;
};

SecuritySelectorModel::Private::Private(SecuritySelectorModel *model)
    : q(model)
    , refresh(new ModelRefresh(model))
    , table(ICore::instance()->table(QStringLiteral("securities")))
    , columns(table)
    , later([this](PopulateLater::Rows *read) { takeOver(read); })
{
}

SecuritySelectorModel::SecuritySelectorModel(QObject *parent)
    : QAbstractListModel(parent), d(std::make_unique<Private>(this))
{
    updateSessionsFilter();
    connectDecoder();
}

SecuritySelectorModel::~SecuritySelectorModel()
{
    if (d->gate)
        d->gate->close();
}

void SecuritySelectorModel::connectDecoder()
{
    const QList<QObject *> plugins = ICore::instance()->plugins();
    for (QObject *plugin : plugins) {
        if (qobject_cast<IDecoder *>(plugin)) {
            connect(plugin, SIGNAL(aNewSessions()), this, SLOT(aNewSessions()));
            return;
        }
    }
}

void SecuritySelectorModel::updateSessionsFilter()
{
    const QList<int> keyColumns{d->columns.stockId, d->columns.session};
    auto sessions =
        SecuritiesSessionFilter(d->table, d->columns.session, keyColumns, -1, nullptr).clone();
    // A worker may be using the one before.
    const auto guard =
        d->gate ? std::unique_lock<std::mutex>(d->gate->mutex()) : std::unique_lock<std::mutex>();
    d->sessions.swap(sessions);
}

void SecuritySelectorModel::aNewSessions()
{
    updateSessionsFilter();
    if (populatesLater() && isLarge())
        populateLater();
    else
        populate();
}

bool SecuritySelectorModel::isLarge() const
{
    const TableLock lock(d->table);
    return d->table->masterIndex()->count() > MostRowsAtOnce;
}

bool SecuritySelectorModel::filter(const Record &record) const
{
    return d->sessions->filter(record);
}

SecuritySelectorModel::Data SecuritySelectorModel::read(const Record &record) const
{
    const SecurityReading::Codes codes = SecurityReading::codesOf(d->columns.boardOf(record));
    Data data = d->columns.read(record);
    data.stockCode = codes.stock;
    data.boardCode = codes.board;
    return data;
}

// Now

void SecuritySelectorModel::populate()
{
    endPopulating();
    SecurityRows rows;
    d->refresh->run([&] { rows = d->readRows(); }, [&] { std::swap(d->rows, rows); });
}

SecurityRows SecuritySelectorModel::Private::readRows() const
{
    SecurityReading reading(columns);
    {
        const TableLock lock(table);
        const MasterIndex *const index = table->masterIndex();
        reading.begin(index->count());
        for (const Record &record : *index) {
            if (q->filter(record))
                reading.add(record);
        }
        reading.end();
    }
    std::vector<SecurityReading::Codes> codes;
    for (const boardid board : reading.boards())
        codes.push_back(SecurityReading::codesOf(board));
    return reading.takeOrdered(codes);
}

// Later

bool SecuritySelectorModel::populatesLater() const
{
    return d->populatesLater.value_or(typeid(*this) == typeid(SecuritySelectorModel));
}

void SecuritySelectorModel::setPopulatesLater(bool is)
{
    d->populatesLater = is;
    if (is)
        return;
    if (d->gate)
        d->gate->close();
    d->gate.reset();
    endPopulating();
}

bool SecuritySelectorModel::isPopulating() const
{
    return d->isPopulating;
}

void SecuritySelectorModel::populateLater()
{
    if (!populatesLater())
        return populate();
    d->later.start(
        {d->table, d->columns, d->filterForWorker(), d->defaultDataRole, d->refresh->keyRoles()});
    if (!std::exchange(d->isPopulating, true))
        Q_EMIT populating(true);
}

std::function<bool(const Record &)> SecuritySelectorModel::Private::filterForWorker()
{
    if (typeid(*q) == typeid(SecuritySelectorModel)) {
        const std::shared_ptr<const ValueFilter> own = sessions->clone();
        return [own](const Record &record) { return own->filter(record); };
    }
    if (!gate)
        gate = std::make_shared<FilterGate>(q);
    return [shared = gate](const Record &record) { return shared->filter(record); };
}

void SecuritySelectorModel::endPopulating()
{
    d->later.cancel();
    if (std::exchange(d->isPopulating, false))
        Q_EMIT populating(false);
}

// The event loop lets no exception through. What hears of the rows may destroy the model.
void SecuritySelectorModel::Private::takeOver(PopulateLater::Rows *read)
{
    const QPointer<SecuritySelectorModel> model(q);
    try {
        if (read)
            refresh->run([] {}, [&] { std::swap(rows, read->rows); }, &read->prepared);
    } catch (...) {
        PopulateLater::logFailure();
    }
    if (model && !later.isUnderWay() && std::exchange(isPopulating, false))
        Q_EMIT q->populating(false);
}

// Rows

SecuritySelectorModel::RowRange SecuritySelectorModel::rowsOfBoard(const QString &stockCode,
                                                                   const QString &boardCode) const
{
    return d->rows.rowsOfBoard(stockCode, boardCode);
}

const SecuritySelectorModel::Data &SecuritySelectorModel::row(int row) const
{
    return d->rows.at(row);
}

SecuritySelectorModel::ItemDataRole SecuritySelectorModel::defaultDataRole() const
{
    return d->defaultDataRole;
}

void SecuritySelectorModel::setDefaultDataRole(ItemDataRole role)
{
    if (role == d->defaultDataRole)
        return;
    d->defaultDataRole = role;
    // What is being prepared is ordered by the old role.
    if (d->isPopulating)
        populateLater();
    if (d->rows.count() > 0)
        Q_EMIT dataChanged(index(0), index(d->rows.count() - 1));
}

int SecuritySelectorModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : d->rows.count();
}

Qt::ItemFlags SecuritySelectorModel::flags(const QModelIndex &index) const
{
    return index.isValid() ? Qt::ItemIsSelectable | Qt::ItemIsEnabled : Qt::NoItemFlags;
}

QVariant SecuritySelectorModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= d->rows.count())
        return {};
    const bool isText = role == Qt::DisplayRole || role == Qt::EditRole;
    return d->rows.data(index.row(), isText ? int(d->defaultDataRole) : role);
}

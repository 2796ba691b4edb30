// SPDX-License-Identifier: BSD-3-Clause
#include "populatelater_p.h"

#include "worker_p.h"

#include <hostapi/workerwalk.h>

#include <QDebug>

#include <mutex>

namespace {

// So few that they take no time that is noticed.
constexpr size_t BoardsAtOnce = 256;

void log(const QString &text)
{
    qWarning().noquote() << "SecuritySelectorModel::populateLater: the rows stay as they were:"
                         << text;
}

// Within a handler: never empty.
QString textOfFailure()
{
    try {
        throw;
    } catch (const std::exception &error) {
        if (*error.what())
            return QString::fromUtf8(error.what());
    } catch (...) {
    }
    return QStringLiteral("an unknown exception");
}

} // namespace

// Belongs to the worker and to the model's thread in turn.
struct PopulateLater::Job
{
    explicit Job(const Task &what, PopulateLater *asker)
        : task(what), walk(what.table), reading(what.columns), owner(asker)
    {
    }

    void run(void (Job::*step)());
    bool readTable();
    void read()
    {
        walk.run([this] { return readTable(); });
    }
    void order();

    const Task task;
    WorkerWalk walk;
    SecurityReading reading;
    std::vector<SecurityReading::Codes> codes;
    Rows rows;
    QString failure;
    bool isOrdered = false;

    std::mutex mutex; // guards the two below, and hands the rest over
    PopulateLater *owner;
    bool isOwnersTurn = false;
};

// On the worker.
void PopulateLater::Job::run(void (Job::*step)())
{
    try {
        (this->*step)();
    } catch (...) {
        failure = textOfFailure();
    }
    const std::lock_guard<std::mutex> guard(mutex);
    isOwnersTurn = true;
    if (owner)
        QMetaObject::invokeMethod(owner, "takeTurn", Qt::QueuedConnection);
}

bool PopulateLater::Job::readTable()
{
    const MasterIndex *const index = task.table->masterIndex();
    reading.begin(index->count());
    for (const Record &record : *index) {
        if (walk.mustStop()) {
            // Not now: somebody waits for the table.
            Worker::destroy(std::exchange(reading, SecurityReading(task.columns)));
            return false;
        }
        if (task.filter(record))
            reading.add(record);
    }
    reading.end();
    return true;
}

void PopulateLater::Job::order()
{
    isOrdered = true;
    if (walk.isGivenUp())
        return;
    rows.rows = reading.takeOrdered(codes);
    if (walk.isGivenUp())
        return;
    const SecurityRows &all = rows.rows;
    const auto dataOf = [this, &all](int row, int role) {
        return all.data(row, role == Qt::DisplayRole ? task.textRole : role);
    };
    rows.prepared.lists = RowLists(all.count(), dataOf, task.keyRoles);
    LongestTexts longest;
    for (int row = 0; row < all.count(); ++row)
        longest.add(dataOf(row, Qt::DisplayRole).toString());
    rows.prepared.longestTexts = longest.texts();
}

PopulateLater::PopulateLater(Done done) : m_done(std::move(done)) {}

// The table may be destroyed next.
PopulateLater::~PopulateLater()
{
    cancel();
    WorkerWalk::waitForGivenUp();
}

void PopulateLater::start(const Task &task)
{
    cancel();
    m_job = std::make_shared<Job>(task, this);
    Worker::post([job = m_job] { job->run(&Job::read); });
}

void PopulateLater::cancel()
{
    if (!m_job)
        return;
    m_job->walk.giveUp();
    {
        const std::lock_guard<std::mutex> guard(m_job->mutex);
        m_job->owner = nullptr;
    }
    Worker::destroy(std::move(m_job));
}

// A call may be that of a job that has been cancelled since.
void PopulateLater::takeTurn()
{
    if (!m_job)
        return;
    {
        const std::lock_guard<std::mutex> guard(m_job->mutex);
        if (!m_job->isOwnersTurn)
            return;
    }
    if (m_job->walk.isGivenUp() || !m_job->failure.isEmpty())
        end(nullptr);
    else if (m_job->isOrdered)
        end(&m_job->rows);
    else
        askDirectories();
}

void PopulateLater::askDirectories()
{
    const std::shared_ptr<Job> job = m_job;
    const std::vector<boardid> &boards = job->reading.boards();
    try {
        for (size_t i = 0; i < BoardsAtOnce && job->codes.size() < boards.size(); ++i) {
            job->codes.push_back(SecurityReading::codesOf(boards[job->codes.size()]));
        }
    } catch (...) {
        job->failure = textOfFailure();
    }
    if (!job->failure.isEmpty() || job->codes.size() < boards.size()) {
        QMetaObject::invokeMethod(this, "takeTurn", Qt::QueuedConnection);
        return;
    }
    job->isOwnersTurn = false;
    Worker::post([job] { job->run(&Job::order); });
}

void PopulateLater::logFailure()
{
    log(textOfFailure());
}

// What hears of the rows may start over, or destroy the model.
void PopulateLater::end(Rows *rows)
{
    std::shared_ptr<Job> job = std::exchange(m_job, nullptr);
    if (!job->failure.isEmpty())
        log(job->failure);
    const Done done = m_done;
    done(rows);
    Worker::destroy(std::move(job));
}

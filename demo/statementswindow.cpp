// SPDX-License-Identifier: BSD-3-Clause
#include "statementswindow.h"

#include "ui_statementswindow.h"

#include <QDir>
#include <QFileDialog>
#include <QLocale>

namespace {

enum Column { NameColumn, SizeColumn, DateColumn };

constexpr int ProgressSteps = 1000;
constexpr unsigned int TimeOutSeconds = 15;

// A row that sorts by what it means rather than by its text.
class StatementItem : public QTreeWidgetItem
{
public:
    StatementItem(int position, const FtpEntry &statement)
    {
        const QLocale locale;
        setData(NameColumn, Qt::UserRole, position);
        setText(NameColumn, statement.text());
        setData(SizeColumn, Qt::UserRole, statement.size);
        setText(SizeColumn,
                statement.size < 0 ? QString() : locale.formattedDataSize(statement.size));
        setTextAlignment(SizeColumn, int(Qt::AlignRight | Qt::AlignVCenter));
        setData(DateColumn, Qt::UserRole, statement.modified);
        setText(DateColumn, statement.knowsTime
                                ? locale.toString(statement.modified, QLocale::ShortFormat)
                                : locale.toString(statement.modified.date(), QLocale::ShortFormat));
    }

    bool operator<(const QTreeWidgetItem &other) const override
    {
        switch (treeWidget()->sortColumn()) {
        case SizeColumn:
            return data(SizeColumn, Qt::UserRole).toLongLong() <
                   other.data(SizeColumn, Qt::UserRole).toLongLong();
        case DateColumn:
            return data(DateColumn, Qt::UserRole).toDateTime() <
                   other.data(DateColumn, Qt::UserRole).toDateTime();
        default:
            return QTreeWidgetItem::operator<(other);
        }
    }
};

QString duration(qint64 seconds)
{
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

} // namespace

StatementsWindow::StatementsWindow(QWidget *parent)
    : QWidget(parent, Qt::Window), m_ui(std::make_unique<Ui::StatementsWindow>())
{
    m_ui->setupUi(this);
    m_ui->files->sortByColumn(NameColumn, Qt::AscendingOrder);
    m_ui->progress->setRange(0, ProgressSteps);

    connect(&m_jobs, &FtpJobs::listed, this,
            [this](int, const QVector<FtpEntry> &entries) { showStatements(entries); });
    connect(&m_jobs, &FtpJobs::progress, this,
            [this](int, const FtpProgress &progress) { showProgress(progress); });
    connect(&m_jobs, &FtpJobs::retrying, this, [this](int, const FtpError &error) {
        m_ui->status->setText(tr("%1 Trying again…").arg(error.text));
    });
    connect(&m_jobs, &FtpJobs::finished, this,
            [this](int, const FtpError &error) { leave(error ? error.text : m_success); });

    connect(m_ui->connectButton, &QPushButton::clicked, this, &StatementsWindow::connectToServer);
    connect(m_ui->download, &QPushButton::clicked, this, &StatementsWindow::askAndDownload);
    connect(m_ui->files, &QTreeWidget::itemActivated, this, &StatementsWindow::askAndDownload);
    connect(m_ui->cancel, &QPushButton::clicked, this, [this] { m_jobs.cancel(m_job); });
    leave(QString());
}

StatementsWindow::~StatementsWindow() = default;

FtpServer StatementsWindow::enteredServer() const
{
    FtpServer server;
    server.logon = {m_ui->host->text().trimmed().toStdString(),
                    static_cast<unsigned short>(m_ui->port->value()),
                    m_ui->user->text().toStdString(), m_ui->password->text().toStdString()};
    server.passive = m_ui->passive->isChecked();
    server.timeout = TimeOutSeconds;
    return server;
}

void StatementsWindow::open(const FtpServer &server, const QString &folder)
{
    m_ui->host->setText(QString::fromStdString(server.logon.HostName()));
    m_ui->port->setValue(server.logon.HostPort());
    m_ui->user->setText(QString::fromStdString(server.logon.UserName()));
    m_ui->password->setText(QString::fromStdString(server.logon.Password()));
    m_ui->folder->setText(folder);
    m_ui->passive->setChecked(server.passive);
    connectToServer();
}

void StatementsWindow::connectToServer()
{
    m_jobs.setServer(enteredServer());
    enter(m_jobs.list(m_ui->folder->text().toUtf8()),
          tr("Connecting to %1…").arg(m_ui->host->text()));
}

void StatementsWindow::showStatements(const QVector<FtpEntry> &entries)
{
    m_statements.clear();
    std::copy_if(entries.begin(), entries.end(), std::back_inserter(m_statements),
                 [](const FtpEntry &entry) { return entry.isFile; });
    m_ui->files->clear();
    m_ui->files->setSortingEnabled(false);
    for (int i = 0; i < m_statements.size(); ++i)
        m_ui->files->addTopLevelItem(new StatementItem(i, m_statements.at(i)));
    m_ui->files->setSortingEnabled(true);
    for (const Column column : {NameColumn, SizeColumn, DateColumn})
        m_ui->files->resizeColumnToContents(column);
    if (!m_statements.isEmpty())
        m_ui->files->setCurrentItem(m_ui->files->topLevelItem(0));
    m_success = tr("%n statement(s)", nullptr, m_statements.size());
}

const FtpEntry *StatementsWindow::currentStatement() const
{
    const QTreeWidgetItem *item = m_ui->files->currentItem();
    return item ? &m_statements.at(item->data(NameColumn, Qt::UserRole).toInt()) : nullptr;
}

void StatementsWindow::askAndDownload()
{
    const FtpEntry *const statement = currentStatement();
    if (!statement || !m_ui->download->isEnabled())
        return;
    const QString file = QFileDialog::getSaveFileName(
        this, tr("Save statement"), QDir::home().filePath(statement->localName()));
    if (!file.isEmpty())
        downloadTo(file);
}

void StatementsWindow::downloadTo(const QString &localFile)
{
    const FtpEntry *const statement = currentStatement();
    if (!statement) {
        leave(tr("There is no statement to fetch"));
        return;
    }
    m_success = tr("Saved as %1").arg(localFile);
    const FtpJobs::Options options =
        m_ui->resume->isChecked() ? FtpJobs::Resume : FtpJobs::NoOption;
    enter(m_jobs.download(statement->path, localFile, options),
          tr("Fetching %1…").arg(statement->text()));
}

void StatementsWindow::showProgress(const FtpProgress &progress)
{
    const QLocale locale;
    QString text = tr("%1 at %2/s")
                       .arg(locale.formattedDataSize(progress.done),
                            locale.formattedDataSize(progress.bytesPerSecond));
    if (progress.total > 0) {
        m_ui->progress->setRange(0, ProgressSteps);
        m_ui->progress->setValue(
            int(double(progress.done) / double(progress.total) * ProgressSteps));
    }
    if (progress.secondsLeft >= 0)
        text += tr(", %1 left").arg(duration(progress.secondsLeft));
    if (progress.done > 0)
        m_ui->status->setText(text);
}

void StatementsWindow::enter(int job, const QString &text)
{
    m_job = job;
    m_ui->server->setEnabled(false);
    m_ui->download->setEnabled(false);
    m_ui->cancel->setEnabled(true);
    // Busy until a size is known.
    m_ui->progress->setRange(0, 0);
    m_ui->progress->show();
    m_ui->status->setText(text);
}

void StatementsWindow::leave(const QString &text)
{
    m_ui->server->setEnabled(true);
    m_ui->download->setEnabled(m_ui->files->topLevelItemCount() > 0);
    if (m_ui->cancel->hasFocus())
        m_ui->files->setFocus();
    m_ui->cancel->setEnabled(false);
    m_ui->progress->hide();
    m_ui->status->setText(text);
    m_ui->status->setToolTip(text);
    Q_EMIT finished();
}

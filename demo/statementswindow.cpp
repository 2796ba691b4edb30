// SPDX-License-Identifier: BSD-3-Clause
#include "statementswindow.h"

#include "ui_statementswindow.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLocale>

namespace {

enum Column { NameColumn, SizeColumn, DateColumn };

constexpr int ProgressSteps = 1000;

// A row that sorts by size and time, not by their texts.
class StatementItem : public QTreeWidgetItem
{
public:
    StatementItem(int position, const Statement &statement)
    {
        const QLocale locale;
        setData(NameColumn, Qt::UserRole, position);
        setText(NameColumn, QString::fromUtf8(statement.name));
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
    : QWidget(parent, Qt::Window)
    , m_ui(std::make_unique<Ui::StatementsWindow>())
    , m_worker(new StatementsWorker)
{
    qRegisterMetaType<StatementsServer>();
    qRegisterMetaType<Statement>("Statement");
    qRegisterMetaType<QVector<Statement>>();
    m_ui->setupUi(this);
    m_ui->files->sortByColumn(NameColumn, Qt::AscendingOrder);
    m_ui->progress->setRange(0, ProgressSteps);

    m_worker->moveToThread(&m_thread);
    connect(&m_thread, &QThread::finished, m_worker, &QObject::deleteLater);
    connect(this, &StatementsWindow::openRequested, m_worker, &StatementsWorker::open);
    connect(this, &StatementsWindow::downloadRequested, m_worker, &StatementsWorker::download);
    connect(m_worker, &StatementsWorker::opened, this, &StatementsWindow::showStatements);
    connect(m_worker, &StatementsWorker::progress, this, &StatementsWindow::showProgress);
    connect(m_worker, &StatementsWorker::downloaded, this,
            [this](const QString &file) { leave(tr("Saved as %1").arg(file)); });
    connect(m_worker, &StatementsWorker::failed, this, &StatementsWindow::leave);

    connect(m_ui->connectButton, &QPushButton::clicked, this, [this] { open(enteredServer()); });
    connect(m_ui->download, &QPushButton::clicked, this, &StatementsWindow::askAndDownload);
    connect(m_ui->files, &QTreeWidget::itemActivated, this, &StatementsWindow::askAndDownload);
    connect(m_ui->cancel, &QPushButton::clicked, this, [this] { m_worker->cancel(); });
    leave(QString());
    m_thread.start();
}

StatementsWindow::~StatementsWindow()
{
    m_worker->cancel();
    m_thread.quit();
    m_thread.wait();
}

StatementsServer StatementsWindow::enteredServer() const
{
    StatementsServer server;
    server.host = m_ui->host->text().trimmed();
    server.port = quint16(m_ui->port->value());
    server.user = m_ui->user->text();
    server.password = m_ui->password->text();
    server.folder = m_ui->folder->text();
    server.passive = m_ui->passive->isChecked();
    server.resume = m_ui->resume->isChecked();
    return server;
}

void StatementsWindow::open(const StatementsServer &server)
{
    m_ui->host->setText(server.host);
    m_ui->port->setValue(server.port);
    m_ui->user->setText(server.user);
    m_ui->password->setText(server.password);
    m_ui->folder->setText(server.folder);
    m_ui->passive->setChecked(server.passive);
    m_ui->resume->setChecked(server.resume);
    enter(Connecting, tr("Connecting to %1…").arg(server.host));
    Q_EMIT openRequested(server);
}

void StatementsWindow::showStatements(const QVector<Statement> &statements)
{
    m_statements = statements;
    m_ui->files->clear();
    m_ui->files->setSortingEnabled(false);
    for (int i = 0; i < statements.size(); ++i)
        m_ui->files->addTopLevelItem(new StatementItem(i, statements.at(i)));
    m_ui->files->setSortingEnabled(true);
    for (const Column column : {NameColumn, SizeColumn, DateColumn})
        m_ui->files->resizeColumnToContents(column);
    if (!statements.isEmpty())
        m_ui->files->setCurrentItem(m_ui->files->topLevelItem(0));
    leave(tr("%n statement(s)", nullptr, statements.size()));
}

void StatementsWindow::askAndDownload()
{
    const QTreeWidgetItem *item = m_ui->files->currentItem();
    if (!item || !m_ui->download->isEnabled())
        return;
    // The server's name of the file may be a path, which is not to be followed here.
    const QString name = QFileInfo(item->text(NameColumn)).fileName();
    const QString file =
        QFileDialog::getSaveFileName(this, tr("Save statement"), QDir::home().filePath(name));
    if (!file.isEmpty())
        downloadTo(file);
}

void StatementsWindow::downloadTo(const QString &localFile)
{
    const QTreeWidgetItem *item = m_ui->files->currentItem();
    if (!item) {
        leave(tr("There is no statement to fetch"));
        return;
    }
    const Statement &statement = m_statements.at(item->data(NameColumn, Qt::UserRole).toInt());
    enter(Downloading, tr("Fetching %1…").arg(item->text(NameColumn)));
    Q_EMIT downloadRequested(statement, localFile);
}

void StatementsWindow::showProgress(qint64 received, qint64 total, qint64 elapsed)
{
    if (!m_ui->cancel->isEnabled())
        return;
    const QLocale locale;
    const qint64 speed = elapsed > 0 ? received * 1000 / elapsed : 0;
    QString text =
        tr("%1 at %2/s").arg(locale.formattedDataSize(received), locale.formattedDataSize(speed));
    if (total > 0) {
        m_ui->progress->setRange(0, ProgressSteps);
        m_ui->progress->setValue(int(double(received) / double(total) * ProgressSteps));
        if (speed > 0)
            text += tr(", %1 left").arg(duration(qMax<qint64>(0, total - received) / speed));
    }
    m_ui->status->setText(text);
}

void StatementsWindow::enter(Phase phase, const QString &text)
{
    m_ui->server->setEnabled(false);
    m_ui->download->setEnabled(false);
    m_ui->cancel->setEnabled(phase == Downloading);
    // Shows activity until the size is known.
    m_ui->progress->setRange(0, 0);
    m_ui->progress->show();
    m_ui->status->setText(text);
}

void StatementsWindow::leave(const QString &text)
{
    m_ui->server->setEnabled(true);
    m_ui->download->setEnabled(m_ui->files->topLevelItemCount() > 0);
    m_ui->cancel->setEnabled(false);
    m_ui->progress->hide();
    m_ui->status->setText(text);
    m_ui->status->setToolTip(text);
    Q_EMIT finished();
}

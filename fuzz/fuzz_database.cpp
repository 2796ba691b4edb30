// Reference databases that are not what they ought to be: a file of any bytes, or a good one into
// whose cells anything was written. A load either succeeds or names the file and the reason, and
// then leaves the former content in place.

#include <embeddedhost/embeddedhost.h>
#include <embeddedhost/referenceschema.h>

#include <fuzzer/FuzzedDataProvider.h>

#include <QCoreApplication>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>

namespace {

void demand(bool holds)
{
    if (!holds)
        std::abort();
}

class Folder
{
public:
    Folder()
    {
        QSqlDatabase::addDatabase("QSQLITE", "fuzz");
        edit(goodFile(), [](QSqlQuery &query) {
            for (const TableSchema &table : ReferenceSchema::tables()) {
                QStringList names;
                QStringList cells;
                for (const ColumnSchema &column : table.columns) {
                    names << column.name;
                    cells << "1";
                    if (column.type.type() == FieldType::String)
                        cells.last() = "'A'";
                }
                demand(query.exec(
                    QString("CREATE TABLE \"%1\" (%2)").arg(table.name, names.join(','))));
                demand(query.exec(
                    QString("INSERT INTO \"%1\" VALUES (%2)").arg(table.name, cells.join(','))));
            }
        });
        if (!m_host.loadNow(goodFile()))
            qFatal("%s", qPrintable(m_host.errorText()));
        m_rows = m_host.liveRows();
    }

    QString goodFile() const { return m_folder.filePath("good.sqlite"); }
    QString file() const { return m_folder.filePath("fuzz.sqlite"); }

    template <typename Change> void edit(const QString &file, Change change)
    {
        QSqlDatabase database = QSqlDatabase::database("fuzz", false);
        database.setDatabaseName(file);
        demand(database.open());
        {
            QSqlQuery query(database);
            query.exec("PRAGMA synchronous = OFF");
            query.exec("PRAGMA journal_mode = OFF");
            change(query);
        }
        database.close();
    }

    void load()
    {
        if (m_host.loadNow(file())) {
            demand(m_host.errorText().isEmpty());
            demand(m_host.loadNow(goodFile()));
        } else {
            demand(m_host.errorText().contains("fuzz.sqlite"));
        }
        demand(m_host.liveRows() == m_rows);
    }

private:
    QTemporaryDir m_folder;
    EmbeddedHost m_host;
    qint64 m_rows = 0;
};

QVariant anyValue(FuzzedDataProvider &input)
{
    switch (input.ConsumeIntegralInRange(0, 3)) {
    case 0:
        return input.ConsumeIntegral<qlonglong>();
    case 1:
        return QByteArray::fromStdString(input.ConsumeRandomLengthString(300));
    case 2:
        return QString::fromStdString(input.ConsumeRandomLengthString(300));
    default:
        return {};
    }
}

// Writes anything into cells.
void spoil(QSqlQuery &query, FuzzedDataProvider &input)
{
    const auto &tables = ReferenceSchema::tables();
    while (input.remaining_bytes() > 0) {
        const TableSchema &table = tables.at(input.ConsumeIntegralInRange(0, tables.size() - 1));
        const QString column =
            table.columns.at(input.ConsumeIntegralInRange(0, table.columns.size() - 1)).name;
        const QString quoted = '"' + table.name + '"';
        query.prepare(QString("UPDATE %1 SET %2 = ? WHERE rowid % 3 = ?").arg(quoted, column));
        query.addBindValue(anyValue(input));
        query.addBindValue(input.ConsumeIntegralInRange(0, 2));
        query.exec();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static int argc = 1;
    static char name[] = "fuzz_database";
    static char *argv[] = {name, nullptr};
    static QCoreApplication app(argc, argv);
    static Folder folder;
    FuzzedDataProvider input(data, size);
    QFile::remove(folder.file());
    if (input.ConsumeIntegralInRange(0, 3) == 0) {
        QFile file(folder.file());
        demand(file.open(QIODevice::WriteOnly));
        const std::string bytes = input.ConsumeRemainingBytesAsString();
        file.write(bytes.data(), qint64(bytes.size()));
    } else {
        demand(QFile::copy(folder.goodFile(), folder.file()));
        folder.edit(folder.file(), [&input](QSqlQuery &query) { spoil(query, input); });
    }
    folder.load();
    return 0;
}
